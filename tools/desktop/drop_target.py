#!/usr/bin/env python3
"""A window that others drop files on, and one that files are dragged out of.

usage: drop_target.py take FILE        writes what is dropped into FILE, the addresses one a line
       drop_target.py give ADDRESS...  offers these addresses to be dragged, once
"""
import sys

import gi

gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, Gtk  # noqa: E402


def dropped(_widget, context, _x, _y, data, _info, time, into):
    addresses = data.get_uris()
    with open(into, "w", encoding="utf-8") as out:
        out.write("".join(address + "\n" for address in addresses))
    context.finish(bool(addresses), False, time)


def main():
    window = Gtk.Window(title=f"Drop {sys.argv[1]}")
    window.set_default_size(160, 120)
    area = Gtk.EventBox()
    area.add(Gtk.Label(label=sys.argv[1]))
    window.add(area)
    if sys.argv[1] == "take":
        area.drag_dest_set(Gtk.DestDefaults.ALL, [], Gdk.DragAction.COPY)
        area.drag_dest_add_uri_targets()
        area.connect("drag-data-received", lambda *told: dropped(*told, sys.argv[2]))
    else:
        area.drag_source_set(Gdk.ModifierType.BUTTON1_MASK, [], Gdk.DragAction.COPY)
        area.drag_source_add_uri_targets()
        area.connect("drag-data-get", lambda _w, _c, data, _i, _t: data.set_uris(sys.argv[2:]))
        area.connect("drag-end", lambda *_: Gtk.main_quit())
    window.connect("destroy", Gtk.main_quit)
    window.show_all()
    window.move(0, 0)
    Gtk.main()


main()
