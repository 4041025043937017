#!/usr/bin/python3
"""Reads an exported file back with a standard parser and prints its cells as JSON.

csv  FILE: a list of records (lists of fields).
xlsx FILE: a list of rows; each cell is null, a string, a number, or {"fecha": "yyyy-mm-dd"}.
html FILE: the rows of the data table; each cell is {"texto", "colspan", "align"}.
"""
import csv
import datetime
import json
import sys
from html.parser import HTMLParser


def leer_csv(ruta):
    with open(ruta, newline='', encoding='utf-8-sig') as f:
        return list(csv.reader(f, strict=True))


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
            celdas.append(v)
        filas.append(celdas)
    return filas


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
    datos = {"csv": leer_csv, "xlsx": leer_xlsx, "html": leer_html}[modo](ruta)
    json.dump(datos, sys.stdout, ensure_ascii=False)
