#pragma once

#include <QString>
#include <QStringList>

// The host's command line.
struct OpcionesHost
{
    QString baseDatos;       // --db: file path or postgresql:// address; empty: the demo
    int usuario = 1;
    int empresa = 1;
    int idioma = 0;          // 0: the settings file decides
    QString asiento;         // --asiento: sent as prmidasi=N
    QString carpetaTemporal; // --temp
    QString prefijo;         // --prefix; empty: the user id
    bool apertura = false;   // --opening
    QString href;            // --href: the base address exactly as given
    QString captura;         // --screenshot FILE
    QString ajustes;         // --settings FILE
    // --exportar ARCHIVO and what to export: exports without a window and ends.
    QString exportar;
    QString vista;           // --vista N
    QString mes;             // --mes AAAA-MM
    QString desde, hasta;    // --desde/--hasta AAAA-MM-DD
    QString cuenta;          // --cuenta CODIGO
    QString leyenda;         // --leyenda TEXTO (prefix, * as wildcard)
    bool inicializar = false; // --inicializar: create the schema and a company, and end
    bool sinDemo = false;     // --sin-demo: an empty company instead of the demo
    bool copiar = false;      // --copiar-a DIRECCION: copy the books of --db there, and end
    QString copiarA;
    bool ayuda = false;
    bool version = false;
    QString error;           // a bad command line, in the language asked for

    // The product key the host hands the document, from which the edition's name comes.
    static constexpr const char *kClaveSesion = "lum01";

    static OpcionesHost Leer(const QStringList &argumentos);
    // The --help text, in language 2 (English) or else Spanish.
    static QString Uso(int idioma);
    // A catalogue text by its number, read before any document: in language 2 (English) or
    // else Spanish.
    static QString Texto(int idioma, int numero);

    // The base address the host hands the document: the query part carries the pairs.
    QString DireccionBase(const QString &carpetaTemporalPorDefecto) const;
    // The layout file's prefix when none is given: the user's number, marked with the
    // database and company unless they are the default ones, so that a grid laid out over
    // one database's entries is never shown over another's.
    QString PrefijoPorDefecto() const;
};
