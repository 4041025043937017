#pragma once

#include <QString>

// The container that holds the document: it hands over the base address and acts on the
// command addresses the document navigates to.
class ContenedorHost
{
public:
    virtual ~ContenedorHost() = default;
    virtual QString BaseHRef() const = 0;
    // marco "centro" for commands, empty for help pages.
    virtual void Navegar(const QString &direccion, const QString &marco) = 0;
};

namespace ComandoHost {

extern const QString kMarco;                 // "centro"
extern const QString kAyudaIngreso;          // help page of the entry screen
extern const QString kAyudaSaldosIniciales;  // help page of the opening-balance entry
extern const QString kAyudaBusqueda;         // help page of the search dialog

QString Error(const QString &texto);
QString AccesoDenegado(const QString &nombreAplicacion);

// Reading a command back (the host side).
enum class Tipo { Error, AccesoDenegado, Ayuda, Otro };
Tipo TipoDe(const QString &direccion);
// The value of the command's single parameter ("[prmErrDesc]:=" text "</prm>").
QString Parametro(const QString &direccion);
// The page file named by a help address ("ingreso_de_asientos.htm").
QString PaginaAyuda(const QString &direccion);
// Where the program keeps a help page in a language: ":/help/en/" for English (2) when it
// has that page, ":/help/" (Spanish) otherwise.
QString RecursoAyuda(const QString &pagina, int idioma);

} // namespace ComandoHost
