"""Run by Blender for tools/check-blender: imports what facetbench reads and writes, and judges what arrived.

blender -b --factory-startup -P tools/check_blender.py -- FACETBENCH SAMPLE ADDON.zip OUT [PICTURE.png]

A picture of Blender's and one of facetbench's, from the same place, are compared by coverage and colour. Facetbench
draws twice, before a black sky and a white one: where both pictures are equal, the model covers the pixel.
"""

import json
import math
import shutil
import subprocess
import sys
from pathlib import Path
from xml.etree import ElementTree

import bpy
import numpy
from mathutils import Matrix, Vector

SIZE = (640, 360)
FOV = 45
LEAST_OVERLAP = 0.97  # of the silhouettes: both over either
LARGEST_DIFFERENCE = 12  # of 255, the mean inside both
MOST_DROPPED = 0.001  # of the triangles: those without area, which importers leave out

# Eye, yaw and pitch as `facetbench render` takes them.
ISLAND = ((-22, 9, -26), 40, 8)
INPUTS = {
    "lighthouse.vxm": ISLAND,
    "lighthouse_v3.vxm": ISLAND,
    "lighthouse.object": ISLAND,
    "lighthouse.ds2md": ISLAND,
    "meshes/dynamic/lighthouse.model": ISLAND,
    "meshes/dynamic/lighthouse/harbour.mesh": ((-16, 9, -10), 45, 16),
    "meshes/dynamic/lighthouse/nature.mesh": ((-15, 3.5, -2), 15, 2),  # near, where leaves are larger than pixels
    "boats_06.ds2md": ((-12, 7, -12), 39, 12),
    "lighthouse.msh": ((2.5, 13, 5), 39, 12),
    "gamedata/textures/Build/Tower.dds": ((-0.8, 0.5, -3), 15, 8),
}
IMPORTERS = {
    "obj": bpy.ops.wm.obj_import,
    "glb": bpy.ops.import_scene.gltf,
    "gltf": bpy.ops.import_scene.gltf,
    "dae": bpy.ops.wm.collada_import,
}


def load_pixels(path):
    """Height x width x 4, the bytes as 0 to 1, bottom row first."""
    image = bpy.data.images.load(str(path))
    image.colorspace_settings.name = "Non-Color"
    pixels = numpy.empty(len(image.pixels), numpy.float32)
    image.pixels.foreach_get(pixels)
    width, height = image.size
    bpy.data.images.remove(image)
    return pixels.reshape(height, width, 4)


def save_pixels(pixels, path):
    height, width = pixels.shape[:2]
    image = bpy.data.images.new(Path(path).name, width, height)
    image.pixels.foreach_set(numpy.ascontiguousarray(pixels, numpy.float32).ravel())
    settings = bpy.context.scene.render.image_settings
    settings.compression, settings.color_mode = 100, "RGB" if pixels[:, :, 3].min() == 1 else "RGBA"
    image.save_render(str(path))
    bpy.data.images.remove(image)


def clear():
    for collection in (bpy.data.objects, bpy.data.collections, bpy.data.meshes, bpy.data.materials, bpy.data.images):
        bpy.data.batch_remove(list(collection))


# Materials and camera.


def material_output(material):
    return next(node for node in material.node_tree.nodes if node.type == "OUTPUT_MATERIAL" and node.is_active_output)


def show_plain(material):
    """The surface shines with its own colour, alpha as the importer has linked it. Unlit materials do that already."""
    nodes, links = material.node_tree.nodes, material.node_tree.links
    surface = next((node for node in nodes if node.type == "BSDF_PRINCIPLED"), None)
    if surface is None:
        return

    def carry(source, target):
        if source.is_linked:
            links.new(source.links[0].from_socket, target)
        else:
            target.default_value = source.default_value

    def node(name):
        return nodes.new(f"ShaderNode{name}")

    color, glow, both, hole, mix = map(node, ("Emission", "Emission", "AddShader", "BsdfTransparent", "MixShader"))
    carry(surface.inputs["Base Color"], color.inputs["Color"])
    carry(surface.inputs["Emission"], glow.inputs["Color"])
    carry(surface.inputs["Emission Strength"], glow.inputs["Strength"])
    carry(surface.inputs["Alpha"], mix.inputs[0])
    if material.use_backface_culling:  # said by glTF; Cycles shows both sides unless the shader hides one
        front = node("Math")
        front.operation, front.use_clamp = "SUBTRACT", True
        carry(surface.inputs["Alpha"], front.inputs[0])
        links.new(node("NewGeometry").outputs["Backfacing"], front.inputs[1])
        links.new(front.outputs[0], mix.inputs[0])
    for source, target in ((color, both.inputs[0]), (glow, both.inputs[1]), (hole, mix.inputs[1]), (both, mix.inputs[2])):
        links.new(source.outputs[0], target)
    links.new(mix.outputs[0], material_output(material).inputs["Surface"])


def to_blender(x, y, z):
    """From the model's axes, left-handed with y up, to Blender's: importers turn y up to z, writers mirror z."""
    return Vector((x, z, y))


def place_camera(eye, yaw, pitch, height=SIZE[1]):
    yaw, pitch = math.radians(yaw), math.radians(pitch)
    forward = to_blender(math.cos(pitch) * math.sin(yaw), -math.sin(pitch), math.cos(pitch) * math.cos(yaw))
    right = to_blender(math.cos(yaw), 0, -math.sin(yaw))
    data = bpy.data.cameras.new("camera")
    data.sensor_fit, data.angle = "VERTICAL", math.radians(FOV)
    data.clip_start, data.clip_end = 0.1, 1000
    # Pixels lie half a pixel up and left of where Blender has them, as Direct3D 9 puts them.
    data.shift_x, data.shift_y = -0.5 / height, 0.5 / height
    camera = bpy.data.objects.new("camera", data)
    turn = Matrix((right, right.cross(forward), -forward)).transposed().to_4x4()
    camera.matrix_world = Matrix.Translation(to_blender(*eye)) @ turn
    bpy.context.scene.collection.objects.link(camera)
    bpy.context.scene.camera = camera


def draw_in_blender(path, size, samples):
    scene = bpy.context.scene
    scene.render.engine = "CYCLES"
    scene.cycles.device, scene.cycles.samples, scene.cycles.use_denoising = "CPU", samples, False
    scene.cycles.transparent_max_bounces = 64
    scene.render.resolution_x, scene.render.resolution_y = size
    scene.render.resolution_percentage = 100
    scene.render.image_settings.file_format, scene.render.image_settings.color_mode = "PNG", "RGBA"
    scene.view_settings.view_transform, scene.render.dither_intensity = "Standard", 0
    scene.render.filepath = str(path)
    bpy.ops.render.render(write_still=True)
    return load_pixels(path)


# What facetbench says and draws.


class FacetBench:
    def __init__(self, program, sample):
        self.program, self.sample = program, Path(sample)

    def run(self, *arguments, folder=None):
        """Runs in the sample's folder or another, where VXMViewer.cfg says where textures are."""
        result = subprocess.run([self.program, *map(str, arguments)], cwd=folder or self.sample, capture_output=True)
        if result.returncode != 0:
            raise RuntimeError(result.stderr.decode("utf-8", "replace").strip())
        return result.stdout

    def info(self, model):
        return json.loads(self.run("info", "--json", model))

    def draw(self, model, view, size, *look, folder=None):
        eye, yaw, pitch = view
        path = self.sample / "drawn.png"
        self.run("render", model, "-o", path, "--quiet", "--mode", "textured", "--environment", "--no-distance-cut",
                 f"--eye={','.join(map(str, eye))}", "--yaw", yaw, "--pitch", pitch, "--fov", FOV,
                 "--size", f"{size[0]}x{size[1]}", *look, folder=folder)
        return load_pixels(path)

    def draw_covered(self, model, view):
        """The picture before black, and how far each pixel is covered."""
        black, white = (self.draw(model, view, SIZE, "--light", "off", folder=self.under_sky(level))[:, :, :3]
                        for level in (0, 255))
        return black, 1 - (white - black).max(axis=2)

    def under_sky(self, level):
        """A copy of the sample whose sky has one colour; pictures with a sky have no grid."""
        folder = self.sample.with_name(f"sky{level}")
        if not folder.exists():
            shutil.copytree(self.sample, folder)
            sky = folder / "gamedata" / "textures" / "Sky"
            shutil.rmtree(sky)
            sky.mkdir()
            one_pixel = bytes([0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 1, 0, 24, 0] + [level] * 3)  # TGA
            for side in range(6):
                (sky / f"sky{side}.tga").write_bytes(one_pixel)
        return folder


# The checks.


class Report:
    def __init__(self):
        self.failures = 0

    def expect(self, name, holds, text):
        if not holds:
            self.failures += 1
            print(f"check-blender: {name}: {text}")


def link_lost_alpha(path):
    """Blender's COLLADA importer reads no alpha of a texture: what the file says is linked here, as a user would."""
    space = {"c": "http://www.collada.org/2005/11/COLLADASchema"}
    document = ElementTree.parse(path)
    effects = {item.get("id") for item in document.iterfind(".//c:effect", space)
               if item.find(".//c:transparent/c:texture", space) is not None}
    for item in document.iterfind(".//c:material", space):
        if item.find("c:instance_effect", space).get("url").removeprefix("#") in effects:
            tree = bpy.data.materials[item.get("name")].node_tree
            surface = next(node for node in tree.nodes if node.type == "BSDF_PRINCIPLED")
            for picture in (node for node in tree.nodes if node.type == "TEX_IMAGE"):
                tree.links.new(picture.outputs["Alpha"], surface.inputs["Alpha"])


def meshes_of_scene():
    return [item for item in bpy.context.scene.objects if item.type == "MESH"]


def images_of(material):
    return [node.image for node in material.node_tree.nodes if node.type == "TEX_IMAGE"] if material.node_tree else []


def has_pixels(image):
    if image is None:
        return False
    stored = image.packed_file is not None or Path(bpy.path.abspath(image.filepath)).is_file()
    return stored and min(image.size) > 0


def check_counts(name, info, report):
    meshes = [mesh for mesh in info["meshes"] if mesh["indexCount"] >= 3]
    wanted = sum(mesh["indexCount"] // 3 for mesh in meshes)
    used = {mesh["materialIndex"] for mesh in meshes}
    objects = meshes_of_scene()
    triangles = sum(len(polygon.vertices) - 2 for item in objects for polygon in item.data.polygons)
    materials = {slot.material for item in objects for slot in item.material_slots if slot.material}
    report.expect(name, len(objects) == len(meshes), f"{len(objects)} objects of {len(meshes)}")
    report.expect(name, wanted * (1 - MOST_DROPPED) <= triangles <= wanted, f"{triangles} triangles of {wanted}")
    report.expect(name, len(materials) == len(used), f"{len(materials)} materials of {len(used)}")
    textured = sum(info["materials"][index]["hasTexture"] for index in used)
    whole = [item for item in materials if images_of(item) and all(map(has_pixels, images_of(item)))]
    report.expect(name, len(whole) == textured, f"{len(whole)} materials with their pictures of {textured}")
    return materials


def only_in_light(info, materials):
    """The materials that facetbench draws with a light alone; they are looked at by themselves."""
    names = [item["texture"].rpartition("\\")[2] for item in info["materials"]
             if item["renderFlags"] & 8 and item["renderFlags"] & 7]
    found = [item for item in materials if any(name in item.name.lower() for name in names)]
    return found, len(names)


def check_glow(name, path, report):
    """Light adds to what is behind it: over grey nothing gets darker and something brighter."""
    pixels = draw_in_blender(path, SIZE, 16)
    grey, alpha = 0.5, pixels[:, :, 3:]
    change = (pixels[:, :, :3] * alpha + grey * (1 - alpha) - grey).mean(axis=2)
    report.expect(name, change.min() > -0.1, f"a light darkens what is behind it by {-255 * change.min():.0f} of 255")
    report.expect(name, change.max() > 0.1, f"a light adds {255 * change.max():.0f} of 255 at most")


def compare(name, ours, coverage, theirs, report):
    alpha = theirs[:, :, 3]
    seen, drawn = coverage >= 0.5, alpha >= 0.5
    overlap = (seen & drawn).sum() / max((seen | drawn).sum(), 1)
    difference = 255 * numpy.abs(ours - theirs[:, :, :3] * alpha[:, :, None])[seen & drawn].mean()
    print(f"{name}: silhouettes overlap {overlap:.2%}, colours differ by {difference:.1f}")
    report.expect(name, overlap >= LEAST_OVERLAP, f"silhouettes overlap by {overlap:.1%} only")
    report.expect(name, difference <= LARGEST_DIFFERENCE, f"colours differ by {difference:.1f} of 255")


def show_only(shown):
    for item in meshes_of_scene():
        item.hide_render = item not in shown


def check(name, model, view, facetbench, out, report):
    """Judges the scene that an importer has filled, by the model it comes from."""
    info = facetbench.info(model)
    materials = check_counts(name, info, report)
    for material in materials:
        show_plain(material)
    place_camera(*view)
    lights, wanted = only_in_light(info, materials)
    report.expect(name, len(lights) == wanted, f"{len(lights)} glowing materials of {wanted}")
    objects = meshes_of_scene()
    glowing = [item for item in objects if item.active_material in lights]
    if glowing:
        show_only(glowing)
        check_glow(name, out / f"{name}-light.png", report)
    show_only([item for item in objects if item not in glowing])
    theirs = draw_in_blender(out / f"{name}.png", SIZE, 16)
    ours, coverage = facetbench.draw_covered(model, view)
    save_pixels(numpy.concatenate([numpy.dstack([ours, coverage]), theirs], axis=1), out / f"{name}.png")
    compare(name, ours, coverage, theirs, report)


def import_by_addon(facetbench, *models, **options):
    """What is reported as an error ends a script's call with RuntimeError, whatever else was imported."""
    paths = [facetbench.sample / model for model in models]
    files = [{"name": path.name} for path in paths]
    bpy.ops.import_scene.facet_bench(directory=str(paths[0].parent), files=files, **options)


def check_several(facetbench, report):
    """One bad file stops no other; each model has its collection; options reach the tool."""
    (facetbench.sample / "bad.vxm").write_bytes(b"no model")
    clear()
    told = ""
    try:
        import_by_addon(facetbench, "bad.vxm", "boats_06.ds2md", "lighthouse.msh", textures=False, scale=2)
    except RuntimeError as error:
        told = str(error)
    report.expect("several", "bad.vxm: " in told, f"the bad file is told as '{told}'")
    names = {collection.name: len(collection.objects) for collection in bpy.context.scene.collection.children}
    report.expect("several", names == {"boats_06": 5, "lighthouse": 1}, f"collections {names}")
    report.expect("several", not any(map(has_pixels, bpy.data.images)), "pictures came unasked")
    height = max((item.dimensions.z for item in meshes_of_scene() if item.users_collection[0].name == "lighthouse"))
    bpy.context.view_layer.active_layer_collection = bpy.context.view_layer.layer_collection.children["boats_06"]
    import_by_addon(facetbench, "lighthouse.msh", own_collection=False)
    count = len(bpy.data.collections["boats_06"].objects)
    report.expect("several", count == 6, f"{count} objects in the current collection")
    report.expect("several", abs(height - 2 * 9.4) < 0.1, f"the tower is {height:.2f} high at scale 2")


def check_inputs(facetbench, out, report):
    for model, view in INPUTS.items():
        clear()
        import_by_addon(facetbench, model)
        check("addon-" + Path(model).name, model, view, facetbench, out, report)


def check_outputs(facetbench, out, report):
    model = "lighthouse.vxm"
    written = out / "modern"
    facetbench.run("convert", model, "--style", "modern", "--to", ",".join(IMPORTERS), "--out", written, "--quiet")
    numpy.bool = bool  # the glTF importer of Debian's Blender asks for it, and Debian's numpy lacks it
    for extension, run_importer in IMPORTERS.items():
        clear()
        run_importer(filepath=str(written / f"lighthouse.{extension}"))
        if extension == "dae":
            link_lost_alpha(written / "lighthouse.dae")
        check(f"modern-{extension}", model, ISLAND, facetbench, out, report)


def draw_readme_picture(facetbench, path):
    """Facetbench's picture of the sample, and Blender's with a sun and the materials as they arrive."""
    size = (368, 248)
    view = ((-20, 8, -24), 36, 7)
    ours = facetbench.draw("lighthouse.vxm", view, size, "--light", "sun", "--time", "10")
    clear()
    import_by_addon(facetbench, "lighthouse.vxm")
    place_camera(*view, size[1])
    sun = bpy.data.objects.new("sun", bpy.data.lights.new("sun", "SUN"))
    sun.data.energy, sun.rotation_euler = 3, (math.radians(45), 0, math.radians(-50))
    world = bpy.data.worlds.new("sky")
    world.color = (0.3, 0.5, 0.85)
    scene = bpy.context.scene
    scene.collection.objects.link(sun)
    scene.world = world
    theirs = draw_in_blender(path, size, 256)
    save_pixels(numpy.concatenate([ours, numpy.ones((size[1], 8, 4)), theirs], axis=1), path)


def main(program, sample, addon, out, picture=None):
    report, out = Report(), Path(out)
    facetbench = FacetBench(program, sample)
    bpy.ops.preferences.addon_install(filepath=addon, overwrite=True)
    bpy.ops.preferences.addon_enable(module="facet_bench")
    bpy.context.preferences.addons["facet_bench"].preferences.program = program
    bpy.context.scene.world = None
    bpy.context.scene.render.film_transparent = picture is None
    if picture:
        draw_readme_picture(facetbench, picture)
        print(f"check-blender: drew {picture}")
        return 0
    check_inputs(facetbench, out, report)
    check_several(facetbench, report)
    check_outputs(facetbench, out, report)
    print(f"check-blender: the pictures are in {out}: facetbench's at the left, Blender's at the right")
    return 1 if report.failures else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[sys.argv.index("--") + 1:]))
