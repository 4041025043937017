#!/usr/bin/python3
"""Reads an exported file back with a standard parser and prints its cells as JSON.

csv  FILE: a list of records (lists of fields).
xlsx FILE: a list of rows; each cell is null, a string, a number, or {"fecha": "yyyy-mm-dd"}.
html FILE: the rows of the data table; each cell is {"texto", "colspan", "align"}.
xlsx-detalle FILE: the archive checked, the sheet's name, frozen cell, column widths, row count,
    the first rows' cells with their styles and the last row's values.
"""
import csv
import datetime
import json
import re
import sys
from html.parser import HTMLParser


def leer_csv(ruta):
    with open(ruta, newline='', encoding='utf-8-sig') as f:
        return list(csv.reader(f, strict=True))


def sin_escapes(v):
    """A text as a spreadsheet reads it: "_xHHHH_" is the character of that code."""
    if isinstance(v, str):
        return re.sub(r'_x([0-9A-Fa-f]{4})_', lambda m: chr(int(m.group(1), 16)), v)
    return v


def leer_xlsx(ruta):
    import openpyxl
    libro = openpyxl.load_workbook(ruta)
    hoja = libro.worksheets[0]
    filas = []
    for fila in hoja.iter_rows():
        celdas = []
        for c in fila:
            v = c.value
            if isinstance(v, datetime.datetime):
                v = {"fecha": v.date().isoformat(), "formato": c.number_format}
            elif isinstance(v, (int, float)):
                v = {"numero": v, "formato": c.number_format}
            celdas.append(sin_escapes(v))
        filas.append(celdas)
    return filas


def leer_xlsx_detalle(ruta):
    import openpyxl
    import zipfile
    with zipfile.ZipFile(ruta) as z:
        roto = z.testzip()
    libro = openpyxl.load_workbook(ruta)
    hoja = libro.worksheets[0]

    def color(c):
        return c.rgb if c is not None and c.type == 'rgb' else None

    def celda(c):
        if c.value is None and c.fill.fill_type is None:
            return None
        v = c.value.date().isoformat() if isinstance(c.value, datetime.datetime) else sin_escapes(c.value)
        return {"valor": v, "formato": c.number_format, "color": color(c.font.color), "negrita": bool(c.font.b),
                "fondo": color(c.fill.fgColor) if c.fill.fill_type == 'solid' else None,
                "linea": c.border.bottom.style}

    filas = [[celda(c) for c in fila] for fila in hoja.iter_rows(max_row=min(hoja.max_row, 6))]
    return {"roto": roto, "hoja": hoja.title, "fijas": hoja.freeze_panes, "filas": filas, "total": hoja.max_row,
            "anchos": [hoja.column_dimensions[l].width for l in "ABC"],
            "ultima": [c.value for c in next(hoja.iter_rows(min_row=hoja.max_row))]}


class Tabla(HTMLParser):
    def __init__(self):
        super().__init__()
        self.tablas = 0
        self.filas = []
        self.celda = None

    def handle_starttag(self, tag, attrs):
        a = {k.lower(): v for k, v in attrs}
        if tag == 'table':
            self.tablas += 1
        elif self.tablas == 2 and tag == 'tr':
            self.filas.append([])
        elif self.tablas == 2 and tag == 'td':
            self.celda = {"texto": "", "colspan": int(a.get("colspan", 1)), "align": (a.get("align") or "").upper()}

    def handle_endtag(self, tag):
        if tag == 'td' and self.celda is not None:
            self.celda["texto"] = self.celda["texto"].replace('\xa0', ' ').strip()
            self.filas[-1].append(self.celda)
            self.celda = None

    def handle_data(self, data):
        if self.celda is not None:
            self.celda["texto"] += data


def leer_html(ruta):
    t = Tabla()
    with open(ruta, encoding='utf-8') as f:
        t.feed(f.read())
    return t.filas


if __name__ == '__main__':
    modo, ruta = sys.argv[1], sys.argv[2]
    datos = {"csv": leer_csv, "xlsx": leer_xlsx, "xlsx-detalle": leer_xlsx_detalle, "html": leer_html}[modo](ruta)
    json.dump(datos, sys.stdout, ensure_ascii=False)
