#!/usr/bin/env python3
"""accessible_names.py PROGRAM [-v]: what a screen reader finds of the running program's window, over AT-SPI.

Prints each control that has no name, and fails when there is one, when the view, the toolbar or a panel is not
found, or when the program is not there. -v: prints all that is found."""
import sys
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

CONTROLS = {Atspi.Role.CHECK_BOX, Atspi.Role.PUSH_BUTTON, Atspi.Role.TOGGLE_BUTTON, Atspi.Role.COMBO_BOX,
            Atspi.Role.ENTRY, Atspi.Role.TEXT, Atspi.Role.LIST, Atspi.Role.TREE, Atspi.Role.TREE_TABLE,
            Atspi.Role.TABLE, Atspi.Role.MENU, Atspi.Role.MENU_ITEM, Atspi.Role.CHECK_MENU_ITEM,
            Atspi.Role.SPIN_BUTTON, Atspi.Role.SLIDER, Atspi.Role.PROGRESS_BAR, Atspi.Role.IMAGE}
EXPECTED = ["Model view", "Materials and meshes", "Models of the folder", "Toolbar"]


def program(name, seconds=15):
    until = time.monotonic() + seconds
    while time.monotonic() < until:
        desktop = Atspi.get_desktop(0)
        for i in range(desktop.get_child_count()):
            child = desktop.get_child_at_index(i)
            if child and child.get_name() == name and child.get_child_count():
                return child
        time.sleep(0.2)
    sys.exit(f"{name} is not on the accessibility bus")


def walk(node, path=()):
    """All nodes and their paths, but for what stands inside a field: its button to clear it is the toolkit's."""
    here = path + (f"{node.get_role_name()} {node.get_name()!r}",)
    yield node, here
    if node.get_role() in (Atspi.Role.TEXT, Atspi.Role.ENTRY):
        return
    for i in range(min(node.get_child_count(), 200)):
        child = node.get_child_at_index(i)
        if child:
            yield from walk(child, here)


nodes = list(walk(program(sys.argv[1])))
if "-v" in sys.argv:
    for _, path in nodes:
        print("  " * (len(path) - 1) + path[-1])
nameless = []
for node, path in nodes:
    shown = node.get_state_set().contains(Atspi.StateType.SHOWING)
    if shown and node.get_role() in CONTROLS and not node.get_name():
        nameless.append(" > ".join(path))
names = {node.get_name() for node, _ in nodes}
missing = [name for name in EXPECTED if name not in names]
for line in nameless:
    print("no name:", line)
for name in missing:
    print("not found:", name)
sys.exit(1 if nameless or missing else 0)
