#!/usr/bin/python3
"""Lets a program that nobody here wrote judge a file that facetbench wrote of the sample scene.

    run.py JUDGE FACETBENCH MAKE_SAMPLE

Exit status 0 when the judge agrees, 1 when not, 77 when it is not installed.
"""
import importlib.util
import json
import math
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

SKIPPED = 77


class NotInstalled(Exception):
    pass


def need_program(*names):
    for name in names:
        if shutil.which(name) is None:
            raise NotInstalled(name)


def need_module(name):
    if importlib.util.find_spec(name) is None:
        raise NotInstalled(f"Python module {name}")


def run(*command, **options):
    return subprocess.run(command, capture_output=True, text=True, errors="replace", timeout=240, **options)


def expect(what, found, wanted):
    if found != wanted:
        raise AssertionError(f"{what}: {found}, should be {wanted}")


def expect_near(what, found, wanted):
    if not all(math.isclose(f, w, abs_tol=1e-3) for f, w in zip(found, wanted, strict=True)):
        raise AssertionError(f"{what}: {found}, should be {wanted}")


class Scene:
    """What facetbench itself tells of the sample."""

    def __init__(self, info):
        meshes = info["meshes"]
        self.meshes = len(meshes)
        self.triangles = sum(mesh["indexCount"] // 3 for mesh in meshes)
        self.materials = len(info["materials"])
        self.used_textures = len({mesh["texture"] for mesh in meshes})
        self.low = [min(mesh["boundsMin"][axis] for mesh in meshes) for axis in range(3)]
        self.high = [max(mesh["boundsMax"][axis] for mesh in meshes) for axis in range(3)]

    def bounds(self, axes):
        """Lowest and highest corner with the model's axes as the format has them: "xyz", "xzy", "xy-z"."""
        low, high = [], []
        for sign, axis in re.findall("(-?)([xyz])", axes):
            ends = [self.low["xyz".index(axis)], self.high["xyz".index(axis)]]
            if sign:
                ends = [-end for end in reversed(ends)]
            low.append(ends[0])
            high.append(ends[1])
        return low, high


def assimp(axes, materials=None):
    def judge(path, scene):
        need_program("assimp")
        result = run("assimp", "info", str(path))
        text = result.stdout

        def number(label):
            found = re.search(rf"^{label}:\s+(\d+)", text, re.M)
            if found is None:
                raise AssertionError(f"assimp (status {result.returncode}) tells no {label!r}: {text[-300:]}")
            return int(found[1])

        expect("triangles", number("Faces"), scene.triangles)
        if materials is not None:  # it merges those that look alike, and leaves out what no mesh uses
            expect("materials", number("Materials"), getattr(scene, materials))
        for label, wanted in zip(("Minimum", "Maximum"), scene.bounds(axes)):
            point = re.search(rf"^{label} point\s+\((.*)\)", text, re.M)[1]
            expect_near(label, [float(part) for part in point.split()], wanted)

    return judge


def assimp_ase(path, scene):
    # The format runs a face's number into its keyword, which this importer does not survive: it gets a blank.
    text, faces = re.subn(rb"(\*MESH_FACE)(\d)", rb"\1 \2", path.read_bytes())
    expect("face lines", faces, scene.triangles)
    path.write_bytes(text)
    assimp("xz-y")(path, scene)  # turned y-up


def povray(path, scene):
    need_program("povray")
    picture = path.with_suffix(".ppm")
    result = run("povray", f"+I{path.name}", f"+O{picture.name}", "+FP8", "+W80", "+H60", "-D", cwd=path.parent)
    if "Cannot open include file" in result.stderr:
        raise NotInstalled("povray-includes")
    expect("povray's status", (result.returncode, "" if result.returncode == 0 else result.stderr[-300:]), (0, ""))
    pixels = picture.read_bytes().split(b"\n255\n", 1)[1]
    colours = {pixels[i:i + 3] for i in range(0, len(pixels), 3)}
    if len(colours) < 50:
        raise AssertionError(f"the picture has only {len(colours)} colours")
    text = path.read_text(errors="replace")
    expect("objects", text.count("\nobject {\n"), scene.meshes)


def ezdxf_reads(path, scene):
    need_module("ezdxf")
    import ezdxf

    drawing = ezdxf.readfile(path)
    expect("errors", [str(error.message) for error in drawing.audit().errors], [])
    faces = drawing.modelspace().query("3DFACE")
    expect("faces", len(faces), scene.triangles)
    expect("layers with faces", len({face.dxf.layer for face in faces}), scene.meshes)
    corners = [corner for face in faces for corner in face.wcs_vertices()]
    low, high = scene.bounds("xzy")
    expect_near("low", [min(corner[axis] for corner in corners) for axis in range(3)], low)
    expect_near("high", [max(corner[axis] for corner in corners) for axis in range(3)], high)


# What the format's own files are known to differ in from the schema; see docs/formats.md.
KNOWN_DAE_DIFFERENCES = [
    r"element unit: .* This element is not expected",
    r"element node: .* attribute 'id': '(Group_|mesh)\d+' is not a valid value",
    r"element bind_vertex_input: .* This element is not expected",
]


def differences_from_schema(path):
    need_program("xmllint")
    need_module("collada")
    resources = Path(importlib.util.find_spec("collada").origin).parent / "resources"
    schema = path.with_name("collada.xsd")
    text = (resources / "schema-1.4.1.xml").read_text()
    schema.write_text(re.sub(r'schemaLocation="[^"]*/xml.xsd"', 'schemaLocation="xml.xsd"', text))
    shutil.copy(resources / "xsd.xml", path.with_name("xml.xsd"))
    result = run("xmllint", "--noout", "--nonet", "--schema", str(schema), str(path))
    return [line for line in result.stderr.splitlines() if "validity error" in line]


def dae_schema(path, scene):
    lines = differences_from_schema(path)
    unknown = [line for line in lines if not any(re.search(known, line) for known in KNOWN_DAE_DIFFERENCES)]
    expect("unknown differences from the schema", unknown, [])
    expect("known differences", len(lines), 1 + 3 * scene.meshes)


def modern_dae_schema(path, scene):
    expect("differences from the schema", differences_from_schema(path), [])


def pycollada(path, scene, axes="xyz"):
    need_module("collada")
    import collada

    document = collada.Collada(str(path))
    expect("errors", document.errors, [])
    expect("geometries", len(document.geometries), scene.meshes)
    if axes == "xyz":
        expect("images", len(document.images), scene.materials)
    else:
        missing = [image.path for image in document.images if not (path.parent / image.path).is_file()]
        expect("pictures that are not there", missing, [])
        expect("materials", len(document.materials), scene.materials)
    primitives = [primitive for geometry in document.geometries for primitive in geometry.primitives]
    expect("triangles", sum(len(primitive) for primitive in primitives), scene.triangles)
    for which, extreme, wanted in zip(("min", "max"), (min, max), scene.bounds(axes)):
        ends = [getattr(primitive.vertex, which)(axis=0) for primitive in primitives]
        expect_near(which, [extreme(float(end[axis]) for end in ends) for axis in range(3)], wanted)


def admesh(path, scene):
    need_program("admesh")
    result = run("admesh", "--exact", str(path))
    found = re.search(r"Number of facets\s*:\s*(\d+)", result.stdout)
    expect("facets", found and int(found[1]), scene.triangles)


GLTF_CHECK = """
const validator = require('gltf-validator');
const read = uri => new Uint8Array(require('fs').readFileSync(decodeURIComponent(uri)));
validator.validateBytes(read(process.argv[1]), {externalResourceFunction: uri => Promise.resolve(read(uri))})
  .then(report => console.log(JSON.stringify(report)));
"""


def gltf_validator(path, scene):
    need_program("node")
    fetched = Path(__file__).parents[2] / "build" / "judges" / "node_modules"
    paths = [str(fetched), os.environ.get("NODE_PATH", "")]
    environment = {**os.environ, "NODE_PATH": os.pathsep.join(paths)}
    result = run("node", "-e", GLTF_CHECK, str(path), env=environment, cwd=path.parent)
    if "Cannot find module" in result.stderr:
        raise NotInstalled("npm package gltf-validator")
    report = json.loads(result.stdout)
    expect("issues", report["issues"]["messages"], [])
    info = report["info"]
    expect("triangles", info["totalTriangleCount"], scene.triangles)
    expect("materials", info["materialCount"], scene.materials)
    expect("draw calls", info["drawCallCount"], scene.meshes)


# Judge: the format it reads, and its check. Those of modern formats have names that begin so.
JUDGES = {
    "assimp_obj": ("obj", assimp("xy-z", "used_textures")),
    "assimp_smd": ("smd", assimp("xzy", "used_textures")),
    "assimp_ase": ("ase", assimp_ase),
    "assimp_dae": ("dae", assimp("xyz")),
    "assimp_dxf": ("dxf", assimp("xy-z")),
    "assimp_stl": ("stl", assimp("xyz")),
    "assimp_ms3d": ("ms3d", assimp("xy-z", "used_textures")),
    "povray": ("pov", povray),
    "ezdxf": ("dxf", ezdxf_reads),
    "dae_schema": ("dae", dae_schema),
    "pycollada": ("dae", pycollada),
    "admesh": ("stl", admesh),
    "gltf_validator": ("glb", gltf_validator),
    "modern_assimp_obj": ("obj", assimp("xy-z")),
    "modern_assimp_dae": ("dae", assimp("xy-z")),
    "modern_assimp_gltf": ("gltf", assimp("xy-z")),
    "modern_assimp_stl": ("stl", assimp("xzy")),
    "modern_dae_schema": ("dae", modern_dae_schema),
    "modern_pycollada": ("dae", lambda path, scene: pycollada(path, scene, "xy-z")),
    "modern_admesh": ("stl", admesh),
    "modern_validator_glb": ("glb", gltf_validator),
    "modern_validator_gltf": ("gltf", gltf_validator),
}


def main(judge, facetbench, make_sample):
    extension, check = JUDGES[judge]
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([make_sample, folder], check=True, stdout=subprocess.DEVNULL)
        model = Path(folder) / "lighthouse.vxm"
        written = Path(folder) / "judged" / f"lighthouse.{extension}"
        info = run(facetbench, "info", "--json", model.name, cwd=folder)
        scene = Scene(json.loads(info.stdout))
        style = "modern" if judge.startswith("modern") else "exact"
        convert = [facetbench, "convert", model.name, "-o", str(written), "--style", style, "--quiet"]
        subprocess.run(convert, check=True, cwd=folder)
        try:
            check(written, scene)
        except NotInstalled as missing:
            print(f"{judge}: skipped, {missing} is not installed")
            return SKIPPED
        except AssertionError as difference:
            print(f"{judge}: {difference}")
            return 1
    print(f"{judge}: {scene.triangles} triangles, all as expected")
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:4]))
