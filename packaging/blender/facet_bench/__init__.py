"""File > Import > Game engine model: Blender gets what facetbench reads, with its textures."""

import tempfile
from pathlib import Path

import bpy
import numpy
from bpy.props import BoolProperty, CollectionProperty, FloatProperty, IntProperty, StringProperty
from bpy_extras.io_utils import ImportHelper

from .convert import ConversionError, Settings, convert

# Read by Blender before 4.2; later ones read blender_manifest.toml. The build puts the version in.
bl_info = {
    "name": "Facet Bench",
    "author": "The Facet Bench developers",
    "version": (0, 0, 0),
    "blender": (3, 4, 0),
    "location": "File > Import > Game engine model",
    "description": "Imports models of game engines with their textures, by facetbench",
    "category": "Import-Export",
}


class TextureFolder(bpy.types.PropertyGroup):
    path: StringProperty(name="Folder", subtype="DIR_PATH")


class FACETBENCH_OT_add_texture_folder(bpy.types.Operator):
    """Add a folder where textures are looked for"""

    bl_idname = "facet_bench.add_texture_folder"
    bl_label = "Add folder"
    bl_options = {"INTERNAL"}

    def execute(self, context):
        preferences(context).texture_folders.add()
        return {"FINISHED"}


class FACETBENCH_OT_remove_texture_folder(bpy.types.Operator):
    """Take this folder off the list"""

    bl_idname = "facet_bench.remove_texture_folder"
    bl_label = "Remove folder"
    bl_options = {"INTERNAL"}

    index: IntProperty()

    def execute(self, context):
        preferences(context).texture_folders.remove(self.index)
        return {"FINISHED"}


class FacetBenchPreferences(bpy.types.AddonPreferences):
    bl_idname = __package__

    program: StringProperty(
        name="Program",
        description="facetbench: its name where the system finds it, else its path",
        default=Settings.program,
        subtype="FILE_PATH",
    )
    texture_folders: CollectionProperty(type=TextureFolder)

    def draw(self, _context):
        self.layout.prop(self, "program")
        self.layout.label(text="Folders where textures are looked for, in this order:")
        for index, folder in enumerate(self.texture_folders):
            row = self.layout.row(align=True)
            row.prop(folder, "path", text="")
            row.operator(FACETBENCH_OT_remove_texture_folder.bl_idname, text="", icon="X").index = index
        self.layout.operator(FACETBENCH_OT_add_texture_folder.bl_idname, icon="ADD")


def preferences(context):
    return context.preferences.addons[__package__].preferences


def import_glb(path):
    """Runs Blender's own importer; gives the new objects."""
    before = set(bpy.data.objects)
    # The importer of Blender 3.4 asks numpy for a name that numpy 1.24 and 1.25 lack.
    lacks_bool = "bool" not in vars(numpy)
    if lacks_bool:
        numpy.bool = bool
    try:
        bpy.ops.import_scene.gltf(filepath=str(path))
    finally:
        if lacks_bool:
            del numpy.bool
    return [item for item in bpy.data.objects if item not in before]


def move_to_collection(objects, collection):
    for item in objects:
        for old in item.users_collection:
            old.objects.unlink(item)
        collection.objects.link(item)


class IMPORT_SCENE_OT_facet_bench(bpy.types.Operator, ImportHelper):
    """Import models of game engines with their textures"""

    bl_idname = "import_scene.facet_bench"
    bl_label = "Import model"
    bl_options = {"REGISTER", "UNDO", "PRESET"}

    filter_glob: StringProperty(default="*.vxm;*.object;*.model;*.mesh;*.msh;*.ds2md;*.dds", options={"HIDDEN"})
    files: CollectionProperty(type=bpy.types.OperatorFileListElement, options={"HIDDEN", "SKIP_SAVE"})
    directory: StringProperty(subtype="DIR_PATH", options={"HIDDEN", "SKIP_SAVE"})

    textures: BoolProperty(name="Textures", description="Bring the textures along", default=True)
    search: BoolProperty(
        name="Search near the model",
        description="Look for textures in the model's folder and those above it, too",
        default=True,
    )
    scale: FloatProperty(name="Scale", description="Size of a unit of the model", default=1, min=0.0001, max=10000)
    own_collection: BoolProperty(
        name="One collection a model",
        description="Put each model into a collection with its name, not into the current one",
        default=True,
    )

    def invoke(self, context, event):
        if self.directory and self.files:  # dropped: the files are known, the options are not
            return context.window_manager.invoke_props_dialog(self)
        return super().invoke(context, event)

    def draw(self, _context):
        for name in ("textures", "search", "scale", "own_collection"):
            self.layout.prop(self, name)

    def models(self):
        if self.files and self.directory:
            return [Path(self.directory, file.name) for file in self.files]
        return [Path(self.filepath)]

    def settings(self, context):
        stored = preferences(context)
        folders = [bpy.path.abspath(folder.path) for folder in stored.texture_folders]
        return Settings(bpy.path.abspath(stored.program), folders, self.textures, self.scale, self.search)

    def import_model(self, model, settings, context):
        with tempfile.TemporaryDirectory(prefix="facet_bench-") as folder:
            glb, warnings = convert(model, folder, settings)
            objects = import_glb(glb)  # packs the pictures, so the folder may go
        for line in warnings:
            self.report({"WARNING"}, line)
        collection = context.collection  # the importer puts them elsewhere
        if self.own_collection:
            collection = bpy.data.collections.new(model.stem)
            context.scene.collection.children.link(collection)
        move_to_collection(objects, collection)

    def execute(self, context):
        if context.mode != "OBJECT":  # the importer selects what it made
            bpy.ops.object.mode_set(mode="OBJECT")
        settings = self.settings(context)
        models, failed = self.models(), 0
        for model in models:
            try:
                self.import_model(model, settings, context)
            except (ConversionError, RuntimeError) as error:  # the second: Blender's importer gave up
                self.report({"ERROR"}, str(error).strip())
                failed += 1
        return {"CANCELLED"} if failed == len(models) else {"FINISHED"}


classes = [
    TextureFolder,
    FACETBENCH_OT_add_texture_folder,
    FACETBENCH_OT_remove_texture_folder,
    FacetBenchPreferences,
    IMPORT_SCENE_OT_facet_bench,
]

if hasattr(bpy.types, "FileHandler"):  # Blender 4.1 and later

    class IMPORT_FH_facet_bench(bpy.types.FileHandler):
        bl_idname = "IMPORT_FH_facet_bench"
        bl_label = "Game engine model"
        bl_import_operator = IMPORT_SCENE_OT_facet_bench.bl_idname
        bl_file_extensions = ".vxm;.object;.model;.mesh;.msh;.ds2md"  # a dropped .dds stays a picture

        @classmethod
        def poll_drop(cls, context):
            return context.area is not None and context.area.type in {"VIEW_3D", "OUTLINER"}

    classes.append(IMPORT_FH_facet_bench)


def add_to_menu(self, _context):
    self.layout.operator(IMPORT_SCENE_OT_facet_bench.bl_idname, text="Game engine model (.vxm, .object, .model ...)")


def register():
    for each in classes:
        bpy.utils.register_class(each)
    bpy.types.TOPBAR_MT_file_import.append(add_to_menu)


def unregister():
    bpy.types.TOPBAR_MT_file_import.remove(add_to_menu)
    for each in reversed(classes):
        bpy.utils.unregister_class(each)
