#!/usr/bin/env python3
"""Checks that each library under src/ includes only itself and the libraries it links,
directly or through them, so a lower library never includes a higher one, and that the
libraries of the entry logic link no widgets, neither directly nor through another, and that
only the data layer talks to the database: a library above it, or the program in app/, never
names ErrorBaseDatos nor opens, executes or inserts through a connection. Prints each offence and ends with status 1
when there is one."""
import pathlib
import re
import sys

raiz = pathlib.Path(__file__).resolve().parent.parent
src = raiz / "src"
bibliotecas = {d.name for d in src.iterdir() if (d / "CMakeLists.txt").exists()}

# The libraries that hold rules and data; windows are wired to them from above.
sin_ventanas = {"store", "currency", "entries", "services", "editing", "export"}
# The data layer: the only libraries that run SQL and see the connection's exceptions; the
# others get a result (a value or a Fallo) from it.
capa_de_datos = {"store", "currency", "entries", "services"}
sql_directo = re.compile(r"ErrorBaseDatos|(?:\.|->)\s*(?:Abrir|Ejecutar|Insertar)\s*\(")

enlaza = {}
widgets = set()
for b in bibliotecas:
    texto = (src / b / "CMakeLists.txt").read_text()
    m = re.search(r"target_link_libraries\(\s*" + b + r"\s+([^)]*)\)", texto)
    partes = m.group(1).split() if m else []
    enlaza[b] = {p for p in partes if p in bibliotecas}
    if "Qt6::Widgets" in partes:
        widgets.add(b)


def alcance(b, visto=None):
    visto = set() if visto is None else visto
    for o in enlaza[b] - visto:
        visto.add(o)
        alcance(o, visto)
    return visto


fallas = []
for b in sorted(sin_ventanas & bibliotecas):
    con_widgets = sorted((alcance(b) | {b}) & widgets)
    if con_widgets:
        fallas.append(f"src/{b}/CMakeLists.txt: {b} enlaza Qt Widgets (a través de {', '.join(con_widgets)})")
for b in sorted(bibliotecas):
    if b in alcance(b):
        fallas.append(f"src/{b}/CMakeLists.txt: {b} se enlaza a sí misma a través de otra biblioteca")
    permitidas = alcance(b) | {b}
    for archivo in sorted((src / b).glob("*.[ch]*")):
        for n, linea in enumerate(archivo.read_text(encoding="utf-8").splitlines(), 1):
            m = re.match(r'\s*#\s*include\s+"([a-z]+)/', linea)
            if m and m.group(1) in bibliotecas and m.group(1) not in permitidas:
                fallas.append(f"{archivo.relative_to(raiz)}:{n}: {b} incluye {m.group(1)}, que no enlaza")
            codigo = linea.split("//", 1)[0]
            if b not in capa_de_datos and sql_directo.search(codigo):
                fallas.append(f"{archivo.relative_to(raiz)}:{n}: {b} habla con la base sin pasar por la capa de datos")
# The program itself is above the data layer too.
for archivo in sorted((raiz / "app").glob("*.[ch]*")):
    for n, linea in enumerate(archivo.read_text(encoding="utf-8").splitlines(), 1):
        if sql_directo.search(linea.split("//", 1)[0]):
            fallas.append(f"{archivo.relative_to(raiz)}:{n}: el programa habla con la base sin pasar por la capa de datos")
print("\n".join(fallas) if fallas else f"{len(bibliotecas)} bibliotecas, cada una incluye solo lo que enlaza; solo la capa de datos habla con la base")
sys.exit(1 if fallas else 0)
