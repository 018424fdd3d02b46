#!/usr/bin/python3
"""Prints what a screen reader finds in Vimora's windows: one line per
window ("window<TAB>its title") and one per label, button, check box or
text field inside it ("label<TAB>text", ...), in the windows' order; the
control with the keyboard focus also as "focus<TAB>its kind<TAB>its name".

Reads the accessibility bus only, so a script sees what a user sees.
"""
import sys

import pyatspi

SHOWN_ROLES = {
    "label": "label",
    "push button": "button",
    "check box": "check",
    "radio button": "radio",
    "text": "text",
    "combo box": "combo",
    "menu item": "menu item",
}
# Tables and lists of a folder tree can hold thousands of rows.
SKIPPED_ROLES = {"table cell", "list item", "table column header", "tree", "list"}


def walk(accessible, out):
    try:
        role = accessible.getRoleName()
        name = accessible.name or ""
        count = accessible.childCount
        focused = accessible.getState().contains(pyatspi.STATE_FOCUSED)
    except Exception:  # a window that closed while being read
        return
    if focused:
        out.append(f"focus\t{role}\t{name}")
    if role in SKIPPED_ROLES:
        return
    if role in SHOWN_ROLES:
        text = name
        if role == "text":
            try:
                body = accessible.queryText()
                text = body.getText(0, body.characterCount)
            except NotImplementedError:
                pass
        out.append(f"{SHOWN_ROLES[role]}\t{text}")
    for i in range(count):
        walk(accessible.getChildAtIndex(i), out)


def find(accessible, role, name):
    """The first control below accessible of that kind whose name begins so."""
    for i in range(accessible.childCount):
        child = accessible.getChildAtIndex(i)
        try:
            if child.getRoleName() == role and (child.name or "").startswith(name):
                return child
            if child.getRoleName() in SKIPPED_ROLES:
                continue
        except Exception:
            continue
        found = find(child, role, name)
        if found is not None:
            return found
    return None


def print_place(app, steps):
    """Prints "x y", the middle of the control that steps ("kind:name",
    each inside the one before) lead to on screen, or nothing."""
    at = app
    for step in steps:
        role, _, name = step.partition(":")
        at = find(at, role, name)
        if at is None:
            return
    box = at.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
    print(f"{box.x + box.width // 2} {box.y + box.height // 2}")


def main():
    app_name = sys.argv[1] if len(sys.argv) > 1 else "Vimora"
    if len(sys.argv) > 2 and sys.argv[2] == "--place":
        desktop = pyatspi.Registry.getDesktop(0)
        for i in range(desktop.childCount):
            app = desktop.getChildAtIndex(i)
            if app is not None and app.name == app_name:
                print_place(app, sys.argv[3:])
                return
        return
    desktop = pyatspi.Registry.getDesktop(0)
    out = []
    for i in range(desktop.childCount):
        app = desktop.getChildAtIndex(i)
        if app is None or app.name != app_name:
            continue
        for j in range(app.childCount):
            window = app.getChildAtIndex(j)
            try:
                showing = window.getState().contains(pyatspi.STATE_SHOWING)
            except Exception:
                continue
            if showing:
                out.append(f"window\t{window.name}")
                walk(window, out)
    print("\n".join(out))


main()
