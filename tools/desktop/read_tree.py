#!/usr/bin/env python3
"""Prints what assistive technology sees of a program: one JSON list of its objects in reading order.

usage: read_tree.py APPLICATION

Each object has its depth, role, name, the captions before it, description, text or null, value or null,
states, and its place on the screen as left, top, width, height.
"""
import json
import sys

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

MOST = 400  # children of one object: long lists are cut off
STATES = ("FOCUSED", "CHECKED", "SELECTED", "SHOWING", "VISIBLE", "ENABLED", "SENSITIVE", "EDITABLE",
          "FOCUSABLE", "CHECKABLE", "ACTIVE")


def text_of(found):
    text = found.get_text_iface()
    return Atspi.Text.get_text(text, 0, Atspi.Text.get_character_count(text)) if text else None


def place_of(found):
    part = found.get_component_iface()
    if not part:
        return None
    place = part.get_extents(Atspi.CoordType.SCREEN)
    return [place.x, place.y, place.width, place.height]


def captions_of(found):
    """The names of the labels that belong to it."""
    return [relation.get_target(index).get_name() for relation in found.get_relation_set()
            if relation.get_relation_type() == Atspi.RelationType.LABELLED_BY
            for index in range(relation.get_n_targets())]


def told(found, depth):
    has = found.get_state_set()
    value = found.get_value_iface()
    return {
        "depth": depth,
        "role": found.get_role_name(),
        "name": found.get_name(),
        "captions": captions_of(found),
        "description": found.get_description(),
        "text": text_of(found),
        "value": value.get_current_value() if value else None,
        "states": [state.lower() for state in STATES if has.contains(getattr(Atspi.StateType, state))],
        "place": place_of(found),
    }


def walk(found, depth, into):
    into.append(told(found, depth))
    for index in range(min(found.get_child_count(), MOST)):
        child = found.get_child_at_index(index)
        if child:
            walk(child, depth + 1, into)


def main():
    Atspi.init()
    desktop = Atspi.get_desktop(0)
    objects = []
    for index in range(desktop.get_child_count()):
        application = desktop.get_child_at_index(index)
        if application and application.get_name() == sys.argv[1]:
            walk(application, 0, objects)
    json.dump(objects, sys.stdout, ensure_ascii=False)


main()
