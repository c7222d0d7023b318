"""Tests of the add-on without Blender: a stand-in for facetbench writes down how it was called."""

import json
import sys
import tempfile
import unittest
import zipfile
from pathlib import Path

PACKAGING = Path(__file__).parents[2] / "packaging" / "blender"
sys.path[:0] = [str(PACKAGING), str(PACKAGING / "facet_bench")]  # the package itself asks for Blender

import make_zip  # noqa: E402
from convert import ConversionError, Settings, convert  # noqa: E402

STAND_IN = """#!/usr/bin/python3
import json, os, sys
model, output = sys.argv[2], sys.argv[4]
if "cut" in model: print("facetbench: " + model + ": cut off: 2 of 3 bytes\\n", file=sys.stderr)
if "bad" in model:
    print("facetbench: " + model + ": no model", file=sys.stderr)
    sys.exit(1)
json.dump({"arguments": sys.argv[1:], "folder": os.getcwd()}, open(output, "w"))
if "killed" in model: os.kill(os.getpid(), 9)
"""


class ConvertTest(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = Path(temporary.name).resolve()
        program = self.folder / "my tools" / "facetbench"
        program.parent.mkdir()
        program.write_text(STAND_IN)
        program.chmod(0o755)
        self.program = str(program)

    def convert(self, name, **settings):
        """What the program was called with, and the warnings."""
        output, warnings = convert(self.folder / name, self.folder, Settings(**{"program": self.program, **settings}))
        return json.loads(output.read_text()), warnings

    def test_says_what_was_chosen(self):
        plain = self.convert("ship.vxm")[0]
        self.assertEqual(plain["folder"], str(self.folder))
        common = ["convert", str(self.folder / "ship.vxm"), "-o", str(self.folder / "model.glb")]
        common += ["--style", "modern", "--quiet"]
        self.assertEqual(plain["arguments"], common)
        chosen = dict(texture_folders=["/a b", "", "/ü"], textures=False, scale=0.01, search=False)
        given = ["--textures", "/a b", "--textures", "/ü", "--no-search", "--textures-out", "none", "--scale", "0.01"]
        self.assertEqual(self.convert("ship.vxm", **chosen)[0]["arguments"], common + given)

    def test_names_are_passed_as_they_are(self):
        for name in ("two words.vxm", "Größe 船.object", "-o.vxm", "$(touch x);'\".vxm"):
            self.assertEqual(self.convert(name)[0]["arguments"][1], str(self.folder / name))

    def test_several_files_fail_alone_and_with_their_own_line(self):
        told = []
        for name in ("cut.vxm", "bad ü.vxm", "cut bad.vxm", "good.vxm", "killed.vxm"):
            try:
                told.append(self.convert(name)[1])
            except ConversionError as error:
                told.append(str(error))
        at = f"facetbench: {self.folder}/"
        self.assertEqual(told[:2], [[at + "cut.vxm: cut off: 2 of 3 bytes"], at + "bad ü.vxm: no model"])
        self.assertEqual(told[2:4], [at + "cut bad.vxm: no model", []])
        self.assertIn("failed (-9)", told[4])

    def test_tells_what_is_missing(self):
        with self.assertRaisesRegex(ConversionError, "cannot run /nowhere/facetbench: .*preferences"):
            self.convert("ship.vxm", program="/nowhere/facetbench")
        with self.assertRaisesRegex(ConversionError, "gone/ship.vxm: no such folder"):
            self.convert("gone/ship.vxm")


class ZipTest(unittest.TestCase):
    def test_holds_the_version_and_is_the_same_each_time(self):
        with tempfile.TemporaryDirectory() as folder:
            files = [Path(folder, name) for name in ("one.zip", "two.zip")]
            for file in files:
                make_zip.main("7.8.9", file)
            self.assertEqual(files[0].read_bytes(), files[1].read_bytes())
            with zipfile.ZipFile(files[0]) as archive:
                self.assertIn(b'"version": (7, 8, 9)', archive.read("facet_bench/__init__.py"))
                self.assertIn(b'\nversion = "7.8.9"\n', archive.read("facet_bench/blender_manifest.toml"))
                archive.read("facet_bench/convert.py")
