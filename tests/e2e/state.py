"""Reads the program's state file for the end-to-end script.

state.py FILE window TITLE            -> "x y width height" of the window
state.py FILE control TITLE TEXT      -> "x y" screen centre of its control
state.py FILE control-kind TITLE KIND -> "x y" of the first control of the kind
state.py FILE value PATH              -> a value by dotted path (project.elements)
"""
import json
import sys


def windows(state, title):
    return [w for w in state.get("windows", []) if w.get("title") == title and w.get("visible")]


def main(argv):
    with open(argv[1], encoding="utf-8") as f:
        state = json.load(f)
    what = argv[2]
    if what == "window":
        for w in windows(state, argv[3]):
            b = w["bounds"]
            print(b["x"], b["y"], b["width"], b["height"])
            return 0
        return 1
    if what in ("control", "control-kind"):
        key = "text" if what == "control" else "kind"
        for w in windows(state, argv[3]):
            for c in w.get("controls", []):
                if c.get(key) == argv[4]:
                    b = c["bounds"]
                    origin = w["bounds"]
                    print(origin["x"] + b["x"] + b["width"] // 2, origin["y"] + b["y"] + b["height"] // 2)
                    return 0
        return 1
    if what == "value":
        value = state
        for part in argv[3].split("."):
            value = value[part]
        print(json.dumps(value) if isinstance(value, (bool, dict, list)) else value)
        return 0
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv))
