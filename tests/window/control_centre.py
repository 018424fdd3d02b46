#!/usr/bin/python3
"""Prints the screen centre "x y" of the first shown control of Vimora with
this role and name (roles as screen_text.py names them: button, check,
label, ...), so a script can click it with xdotool as a user would. Prints
nothing when there is none.
"""
import sys

import pyatspi

ROLES = {"button": "push button", "check": "check box", "radio": "radio button", "label": "label",
         "text": "text", "combo": "combo box", "menu item": "menu item", "list item": "list item"}


# The folder tree can hold thousands of rows.
SKIPPED = {"tree", "tree table", "tree item", "table"}


def find(accessible, role, name):
    try:
        own = accessible.getRoleName()
        if own == role and accessible.name == name and accessible.getState().contains(pyatspi.STATE_SHOWING):
            return accessible
        if own in SKIPPED:
            return None
        for i in range(accessible.childCount):
            found = find(accessible.getChildAtIndex(i), role, name)
            if found is not None:
                return found
    except Exception:  # a window that closed while being read
        pass
    return None


def main():
    role, name = ROLES.get(sys.argv[1], sys.argv[1]), sys.argv[2]
    desktop = pyatspi.Registry.getDesktop(0)
    for i in range(desktop.childCount):
        app = desktop.getChildAtIndex(i)
        if app is None or app.name != "Vimora":
            continue
        found = find(app, role, name)
        if found is not None:
            box = found.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
            print(box.x + box.width // 2, box.y + box.height // 2)
            return


main()
