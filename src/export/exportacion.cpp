#include "exportacion.h"

#include "escritores.h"
#include "fuentegrilla.h"
#include "grillaensalida.h"

#include "entries/grilla.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

struct DatosFormato
{
    int titulo;      // the dialog's title
    int filtro;      // the catalogue filter
    const char *extension;
};

DatosFormato Datos(int formato)
{
    switch (formato) {
    case ExportacionGrilla::Libro: return {1121, 1118, ".xlsx"};
    case ExportacionGrilla::CSV: return {1122, 1119, ".csv"};
    default: return {1115, 1120, ".htm"};
    }
}


} // namespace

ExportacionGrilla::ExportacionGrilla(EntornoExportacion entorno)
    : m_entorno(std::move(entorno))
{
}

QString ExportacionGrilla::CarpetaExportacion()
{
    if (m_carpeta.isEmpty()) {
        const QString base = m_entorno.carpetaDatos.isEmpty()
                                 ? QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)
                                 : m_entorno.carpetaDatos;
        m_carpeta = QDir(base).filePath(m_entorno.texto(1117));
    }
    QDir().mkpath(m_carpeta);
    return m_carpeta;
}

QString ExportacionGrilla::NombrePorDefecto(const QString &titulo, int formato)
{
    QString nombre = titulo;
    nombre.replace(QLatin1Char('/'), QLatin1Char('-'));
    return nombre + QLatin1String(Datos(formato).extension);
}

QString ExportacionGrilla::ConExtension(const QString &ruta, int formato)
{
    if (formato == CSV)
        return ruta;
    const QString extension = QLatin1String(Datos(formato).extension);
    if (ruta.endsWith(extension, Qt::CaseInsensitive))
        return ruta;
    // The catalogue's filter still names the old workbook, "*.xls": a name typed that way
    // means the workbook, written with its own extension, not "a.xls.xlsx".
    if (formato == Libro && ruta.endsWith(QLatin1String(".xls"), Qt::CaseInsensitive))
        return ruta + QLatin1Char('x');
    return ruta + extension;
}

QString ExportacionGrilla::FiltroQt(const QString &filtro)
{
    const QString descripcion = filtro.section(QLatin1Char('|'), 0, 0);
    const QString patron = filtro.section(QLatin1Char('|'), 1);
    // Qt reads the patterns from the last parentheses: a description that already ends
    // with them stays as it is ("Archivo html (*.htm)"); "(csv)" is no pattern.
    if (patron.isEmpty() || descripcion.endsWith(QLatin1Char('(') + patron + QLatin1Char(')')))
        return descripcion;
    return descripcion + QStringLiteral(" (") + patron + QLatin1Char(')');
}

QString ExportacionGrilla::ElegirArchivo(int formato, const QString &nombre, const QString &titulo)
{
    QString filtro = m_entorno.texto(Datos(formato).filtro);
    // The workbook written is of the current kind, so its pattern is offered.
    if (formato == Libro)
        filtro.replace(QLatin1String("*.xls"), QLatin1String("*.xlsx"));
    if (!m_entorno.selector)
        return {};
    return m_entorno.selector->ElegirArchivoGuardar(titulo, CarpetaExportacion(), nombre, FiltroQt(filtro));
}

std::optional<Fallo> ExportacionGrilla::Escribir(int formato, const GrillaEnPantalla &g, const QString &ruta,
                                                 const EntornoExportacion &entorno, const std::function<void(int, int)> &avance,
                                                 const SiguienteParte &siguiente)
{
    // A grid written part by part holds data rows only; the screen's ends with the new-entry row.
    std::optional<GrillaEnSalida> salida;
    if (!siguiente)
        salida.emplace(*g.grilla);
    const FuenteDeGrilla fuente(*g.grilla, g.puntosPorPulgada, g.anchoControlTwips);
    std::optional<Fallo> fallo;
    switch (formato) {
    case Libro:
        // The sheet takes the name of the entries in the user's language.
        fallo = Escritores::EscribirLibro(fuente, ruta, entorno.formatoFecha, entorno.texto ? entorno.texto(1010) : QStringLiteral("Asientos"),
                                          avance, siguiente);
        break;
    case CSV:
        fallo = Escritores::EscribirCSV(fuente, ruta, avance, siguiente);
        break;
    default:
        fallo = Escritores::EscribirHTML(fuente, ruta, g.titulo, entorno.empresa, entorno.edicion, entorno.formatoFecha,
                                         entorno.reloj->Ahora(), siguiente);
        break;
    }
    if (fallo)
        return EnPalabras(*fallo, ruta, entorno.texto);
    return std::nullopt;
}

Fallo ExportacionGrilla::EnPalabras(Fallo fallo, const QString &ruta, const std::function<QString(int)> &texto)
{
    if (fallo.deLaBase)
        return fallo;
    if (fallo.numeroTexto == Escritores::kNoSeEscribioEntero || fallo.numeroTexto == Escritores::kNoSeCreoLibro
        || fallo.numeroTexto == Escritores::kDemasiadasFilas) {
        fallo.detalle = texto ? texto(fallo.numeroTexto) : QString::number(fallo.numeroTexto);
        fallo.numeroTexto = 1938;
    }
    fallo.detalle = Escritores::ConArchivo(ruta, fallo.detalle);
    return fallo;
}

void ExportacionGrilla::Exportar(int formato, const GrillaEnPantalla &g)
{
    const QString ruta = ElegirArchivo(formato, NombrePorDefecto(g.titulo, formato), m_entorno.texto(Datos(formato).titulo));
    if (ruta.isEmpty())
        return;
    const QString destino = ConExtension(ruta, formato);
    // The dialog asked about replacing the name as typed; a file the extension names instead
    // is asked about here.
    if (destino != ruta && QFileInfo(destino).isFile() && m_entorno.confirmar) {
        QString pregunta = m_entorno.texto(2180);
        pregunta.replace(QLatin1String("[p]"), QDir::toNativeSeparators(destino));
        if (!m_entorno.confirmar(pregunta))
            return;
    }
    if (const auto fallo = Escribir(formato, g, destino, m_entorno)) {
        m_entorno.error(fallo->numeroTexto, fallo->detalle);
    } else if (m_entorno.informar) {
        // The user is told where the file went: the dialog may have added the extension.
        QString texto = m_entorno.texto(1967);
        texto.replace(QLatin1String("[p]"), QDir::toNativeSeparators(destino));
        m_entorno.informar(texto);
    }
}
