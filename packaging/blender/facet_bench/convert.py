"""Runs facetbench on one model and tells what it said. Knows nothing of Blender, so that it is tested without it."""

import os
import subprocess
from dataclasses import dataclass, field
from pathlib import Path

# Windows would open a console window for a moment; other systems have no such flag.
NO_CONSOLE = getattr(subprocess, "CREATE_NO_WINDOW", 0)


class ConversionError(Exception):
    """Its text is one line for the user."""


@dataclass
class Settings:
    program: str = "facetbench"
    texture_folders: list = field(default_factory=list)
    textures: bool = True
    scale: float = 1.0
    search: bool = True


def command_line(model, output, settings):
    """The arguments that write `model` as the glb file `output`."""
    arguments = [settings.program or Settings.program, "convert", model, "-o", output, "--style", "modern", "--quiet"]
    for folder in settings.texture_folders:
        if folder:
            arguments += ["--textures", folder]
    if not settings.search:
        arguments.append("--no-search")
    if not settings.textures:
        arguments += ["--textures-out", "none"]
    if settings.scale != 1.0:
        arguments += ["--scale", f"{settings.scale:.6g}"]
    return arguments


def convert(model, folder, settings):
    """Writes `model` as a glb file into `folder`. Gives the file and the lines of warning, or raises ConversionError."""
    model = Path(os.path.abspath(model))
    output = Path(folder, "model.glb")
    arguments = command_line(str(model), str(output), settings)
    try:
        # In the model's folder, so that a VXMViewer.cfg and gamedata/textures/ beside the model count.
        result = subprocess.run(
            arguments, cwd=model.parent, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
            creationflags=NO_CONSOLE, check=False,
        )
    except OSError as error:
        if not model.parent.is_dir():
            raise ConversionError(f"{model}: no such folder") from error
        raise ConversionError(
            f"cannot run {arguments[0]}: {error.strerror}; the add-on's preferences hold the path of facetbench"
        ) from error
    lines = [line.strip() for line in result.stderr.decode("utf-8", "replace").splitlines() if line.strip()]
    if result.returncode != 0 or not output.is_file():
        # The last line says what made it give up; those before it are warnings.
        raise ConversionError(lines[-1] if lines else f"{model}: {arguments[0]} failed ({result.returncode})")
    return output, lines
