#pragma once

#include "store/fallo.h"
#include "store/reloj.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>

class Grilla;

// The save-file question of an export, behind a seam tests can answer: the dialog's
// title, the folder it starts in, the proposed name and a filter in Qt's form
// ("Archivo de texto (csv) (*.csv)"). Answers the chosen path, empty when cancelled.
class SelectorArchivo
{
public:
    virtual ~SelectorArchivo() = default;
    virtual QString ElegirArchivoGuardar(const QString &titulo, const QString &carpeta, const QString &nombre,
                                         const QString &filtro) = 0;
};

// What the export commands need of the document.
struct EntornoExportacion
{
    std::function<QString(int)> texto;                     // catalogue text by its number
    std::function<void(int, const QString &)> error;       // a catalogue error with its detail
    std::function<void(const QString &)> informar;         // tells the user a text; may be empty
    std::function<bool(const QString &)> confirmar;        // a yes-or-no question; empty: yes
    SelectorArchivo *selector = nullptr;
    QString carpetaDatos;   // the user's data folder; empty: the program's own data folder
    QString formatoFecha;   // the user's date format, suite notation
    QString empresa;        // NombreEmpresa
    QString edicion;        // NombreEdicion
    std::shared_ptr<const Reloj> reloj = std::make_shared<Reloj>(); // the moment an HTML page shows
};

// The grid as the document shows it now: its title and the screen's measures.
struct GrillaEnPantalla
{
    Grilla *grilla = nullptr;
    QString titulo;             // the caption of the screen title
    double puntosPorPulgada = 96;
    int anchoControlTwips = 0;
};

// The export commands of the entry menu: the grid to a comma-separated file, a workbook
// or an HTML page, in a file the user picks in the export folder.
class ExportacionGrilla
{
public:
    enum Formato { Libro = 1, CSV = 2, HTML = 3 };

    explicit ExportacionGrilla(EntornoExportacion entorno);

    void MnuExpExcell(const GrillaEnPantalla &g) { Exportar(Libro, g); }
    void MnuExpCSV(const GrillaEnPantalla &g) { Exportar(CSV, g); }
    void MnuExpHtml(const GrillaEnPantalla &g) { Exportar(HTML, g); }

    // The export folder, made when missing; kept for the life of the document.
    QString CarpetaExportacion();
    // Empty when the user cancels.
    QString ElegirArchivo(int formato, const QString &nombre, const QString &titulo);

    // The proposed file name: the title with "/" as "-", and the format's extension.
    static QString NombrePorDefecto(const QString &titulo, int formato);
    // The path with the format's extension added when it does not end with it, and ".xls"
    // made ".xlsx" (the comma-separated file keeps the name as typed).
    static QString ConExtension(const QString &ruta, int formato);
    // A catalogue filter "description|pattern" in Qt's form.
    static QString FiltroQt(const QString &filtro);

    // Writes the grid in the format to the path; on failure, text 1938 with the path and
    // the reason. siguiente, when given, puts the next part of a long export in the grid
    // once its rows are written, and answers false when there is none; when a part cannot
    // be read no file is left, and the reading's failure is answered as it came.
    static std::optional<Fallo> Escribir(int formato, const GrillaEnPantalla &g, const QString &ruta,
                                         const EntornoExportacion &entorno, const std::function<void(int, int)> &avance = {},
                                         const std::function<Resultado<bool>()> &siguiente = {});
    // A failure to write the file at ruta in the user's words: a writer's own reason becomes
    // text 1938 with that reason's text, and the file is named once. A failure to read the
    // database is left as it came, for the caller's own text.
    static Fallo EnPalabras(Fallo fallo, const QString &ruta, const std::function<QString(int)> &texto);

private:
    void Exportar(int formato, const GrillaEnPantalla &g);

    EntornoExportacion m_entorno;
    QString m_carpeta;
};
