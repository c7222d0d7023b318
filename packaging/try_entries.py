#!/usr/bin/env python3
"""try_entries.py FACETBENCH MAKE_SAMPLE: has the sample's files recognised and drawn as a file manager does it, by
the MIME types and the thumbnailer entry of this folder. Exits with 77 when a tool for that is not installed."""

import configparser
import os
import pathlib
import shlex
import shutil
import struct
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
TYPES = {
    "lighthouse.vxm": "model/x-vxm",
    "lighthouse_v3.vxm": "model/x-vxm",
    "lighthouse.object": "model/x-vxm-object",
    "lighthouse.msh": "model/x-orion-mesh",
    "lighthouse.ds2md": "model/x-ds2md",
    "boats_06.ds2md": "model/x-ds2md",
    "meshes/dynamic/lighthouse.model": "model/x-4a-model",
    "meshes/dynamic/lighthouse/house.mesh": "model/x-4a-model",
}


def content_type(path):
    told = subprocess.run(["gio", "info", "-a", "standard::content-type", path], capture_output=True, text=True)
    return told.stdout.split()[-1]


def thumbnail(entry, path, size, folder):
    """The bytes of the picture; its file is a temporary one without extension, as most file managers make it."""
    handle, output = tempfile.mkstemp(prefix=".thumbnail.", dir=folder)
    os.close(handle)
    values = {"%i": str(path), "%u": path.as_uri(), "%o": output, "%s": str(size), "%%": "%"}
    words = shlex.split(entry["Exec"])
    for code, value in values.items():
        words = [word.replace(code, value) for word in words]
    subprocess.run(words, check=True, stdout=subprocess.DEVNULL)
    return pathlib.Path(output).read_bytes()


def main(facetbench, make_sample):
    for needed in ("gio", "update-mime-database"):
        if not shutil.which(needed):
            print("skipped: there is no", needed)
            return 77
    os.environ["PATH"] = f"{pathlib.Path(facetbench).parent}:{os.environ['PATH']}"
    parsed = configparser.ConfigParser(interpolation=None)
    parsed.optionxform = str
    parsed.read(HERE / "facetbench.thumbnailer")
    entry = parsed["Thumbnailer Entry"]
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        packages = folder / "share/mime/packages"
        packages.mkdir(parents=True)
        shutil.copy(HERE / "facetbench.mime.xml", packages / "facetbench.xml")
        os.environ["XDG_DATA_HOME"] = str(folder / "share")
        subprocess.run(["update-mime-database", packages.parent], check=True, stderr=subprocess.DEVNULL)
        sample = folder / "sample"
        subprocess.run([make_sample, sample], check=True, stdout=subprocess.DEVNULL)
        bare = folder / "without_extension"
        for file, expected in TYPES.items():
            shutil.copy(sample / file, bare)
            for path in (sample / file, bare):
                assert content_type(path) == expected, f"{path}: {content_type(path)}, not {expected}"
            assert expected in entry["MimeType"].split(";")
            png = thumbnail(entry, sample / file, 128, folder)
            assert png.startswith(b"\x89PNG") and struct.unpack(">II", png[16:24]) == (128, 128), file
        bare.write_bytes(struct.pack("<II", 9, 0))  # a 4A file without the chunk that most begin with
        assert content_type(bare) == "model/x-4a-model"
    print("passed")
    return 0


sys.exit(main(*sys.argv[1:3]))
