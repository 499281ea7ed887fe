"""One window for all actions: the list of names to choose from, and entries below it."""
import warnings

from kvtdruck_program import Refused

COLUMNS = [("Name", "name"), ("Art", "art"), ("Typ", "typ"), ("Wert", "wert"), ("Bedeutung", "bedeutung"),
           ("Muster", "muster")]


def toolkit():
    """GTK, where it is installed and has a screen."""
    try:
        with warnings.catch_warnings():
            warnings.simplefilter("ignore")  # of its own importing; Inkscape would show them to the user
            import gi
            gi.require_version("Gtk", "3.0")
            from gi.repository import Gtk
    except (ImportError, ValueError):
        raise Refused("Für die Auswahl am Bildschirm fehlen die Pakete python3-gi und gir1.2-gtk-3.0.") from None
    if not Gtk.init_check()[0]:
        raise Refused("Für die Auswahl wird eine grafische Oberfläche gebraucht.")
    return Gtk


class Window:
    """`fields` are shown as a table, unless there are none; `entries` are tuples of key, label, default and, where
    one of several is to be chosen, the choices."""

    def __init__(self, title, fields, entries, several=False):
        self.gtk = Gtk = toolkit()
        self.dialog = Gtk.Dialog(title=title)
        self.dialog.add_buttons("Abbrechen", Gtk.ResponseType.CANCEL, "Einfügen", Gtk.ResponseType.OK)
        self.dialog.set_default_response(Gtk.ResponseType.OK)
        self.widgets = {}
        self.view = None
        if fields:
            self._add_table(fields, several)
        self._add_entries(entries)
        self.dialog.show_all()

    def _add_table(self, fields, several):
        Gtk = self.gtk
        self.rows = Gtk.ListStore(*[str] * len(COLUMNS))
        for field in fields:
            self.rows.append([field[key] or "" for _, key in COLUMNS])
        self.search = Gtk.SearchEntry(placeholder_text="Suchen in Namen, Werten und Bedeutungen")
        shown = self.rows.filter_new()
        shown.set_visible_func(lambda rows, at, _: self.search.get_text().lower() in " ".join(rows[at]).lower())
        self.search.connect("search-changed", lambda _: shown.refilter())
        self.view = Gtk.TreeView(model=shown, enable_search=False)
        for number, (title, _) in enumerate(COLUMNS):
            column = Gtk.TreeViewColumn(title, Gtk.CellRendererText(), text=number)
            column.set_resizable(True)
            self.view.append_column(column)
        self.view.get_selection().set_mode(Gtk.SelectionMode.MULTIPLE if several else Gtk.SelectionMode.SINGLE)
        self.view.get_selection().connect("changed", lambda _: self._propose_pattern())
        self.view.connect("row-activated", lambda *_: self.dialog.response(Gtk.ResponseType.OK))
        scrolled = Gtk.ScrolledWindow(min_content_height=320, min_content_width=760)
        scrolled.add(self.view)
        self.dialog.get_content_area().pack_start(self.search, False, False, 4)
        self.dialog.get_content_area().pack_start(scrolled, True, True, 4)

    def _add_entries(self, entries):
        Gtk = self.gtk
        grid = Gtk.Grid(row_spacing=4, column_spacing=8, margin=4)
        for row, (key, label, default, *choices) in enumerate(entries):
            grid.attach(Gtk.Label(label=label, xalign=0), 0, row, 1, 1)
            if choices:
                widget = Gtk.ComboBoxText()
                for choice in choices[0]:
                    widget.append(choice, choice)
                widget.set_active_id(default)
            else:
                widget = Gtk.Entry(text=default, activates_default=True, hexpand=True)
            grid.attach(widget, 1, row, 1, 1)
            self.widgets[key] = widget
        self.dialog.get_content_area().pack_start(grid, False, False, 4)

    def _chosen(self):
        if self.view is None:
            return []
        model, paths = self.view.get_selection().get_selected_rows()
        return [list(model[path]) for path in paths]

    def _propose_pattern(self):
        if "pattern" in self.widgets and self._chosen():
            self.widgets["pattern"].set_text(self._chosen()[-1][len(COLUMNS) - 1])

    def values(self):
        """The chosen names under "name", and what the entries hold under their keys."""
        values = {"name": [row[0] for row in self._chosen()]}
        for key, widget in self.widgets.items():
            values[key] = widget.get_active_id() if isinstance(widget, self.gtk.ComboBoxText) else widget.get_text()
        return values

    def run(self):
        """What `values` gives when the user confirms; nothing where he cancels."""
        accepted = self.dialog.run() == self.gtk.ResponseType.OK
        values = self.values()
        self.dialog.destroy()
        return values if accepted else None
