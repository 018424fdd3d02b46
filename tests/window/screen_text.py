#!/usr/bin/python3
"""Prints what a screen reader finds in Vimora's windows: one line per
window ("window<TAB>its title") and one per label, button, check box,
text field or list entry inside it ("label<TAB>text", ...), in the windows' order; the
control with the keyboard focus also as "focus<TAB>its kind<TAB>its name".

Reads the accessibility bus only, so a script sees what a user sees.
With --at "button<TAB>Zoom +" it prints instead where that line's control
is on the screen ("x y", its centre), for a click where a user would click;
a line ending in "*" stands for every line that begins with the rest.
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
    "list item": "list item",
}
# The folder tree and tables can hold thousands of rows.
SKIPPED_ROLES = {"table cell", "table column header", "tree", "tree table", "table"}


def centre(accessible):
    box = accessible.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
    return f"{box.x + box.width // 2} {box.y + box.height // 2}"


def walk(accessible, out, wanted=None):
    try:
        role = accessible.getRoleName()
        name = accessible.name or ""
        count = accessible.childCount
        state = accessible.getState()
        # Hidden controls keep their texts (an index cell of the last page).
        if not state.contains(pyatspi.STATE_SHOWING):
            return
        focused = state.contains(pyatspi.STATE_FOCUSED)
    except Exception:  # a window that closed while being read
        return
    if focused and wanted is None:
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
        line = f"{SHOWN_ROLES[role]}\t{text}"
        if wanted is None:
            out.append(line)
        elif not out and (line == wanted or wanted.endswith("*") and line.startswith(wanted[:-1])):
            out.append(centre(accessible))
    for i in range(count):
        walk(accessible.getChildAtIndex(i), out, wanted)


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
    print(centre(at))


def main():
    args = sys.argv[1:]
    wanted = None
    if len(args) >= 2 and args[0] == "--at":
        wanted = args[1]
        args = args[2:]
    app_name = args[0] if args else "Vimora"
    if len(args) > 1 and args[1] == "--place":
        desktop = pyatspi.Registry.getDesktop(0)
        for i in range(desktop.childCount):
            app = desktop.getChildAtIndex(i)
            if app is not None and app.name == app_name:
                print_place(app, args[2:])
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
                if wanted is None:
                    out.append(f"window\t{window.name}")
                walk(window, out, wanted)
    print("\n".join(out))


main()
