#pragma once

#include <QHash>
#include <QLocale>
#include <QString>

#include <memory>

class ServicioConexion;
class ServicioMensajes;

// One text catalogue, found by component name ("LNG_TCO_001.clsResources") among the
// program's resources. Texts are kept with their real line breaks.
class ComponenteIdioma
{
public:
    // Null when no catalogue of that name exists or it cannot be read.
    static std::unique_ptr<ComponenteIdioma> Crear(const QString &nombreComponente);
    // Reads a catalogue in its file format: "NNNN<TAB>text" per line, "#" comments,
    // escapes \r \n \t \\. Lines that do not follow it are skipped.
    static QHash<int, QString> LeerCatalogo(const QByteArray &contenido);

    // Catalogue text number; false when the number is not in the catalogue.
    bool resLoad(int numero, QString &texto) const;

    QString IDAppName;
    quint8 IDSLNG = 0;

private:
    QHash<int, QString> m_textos;
};

// The language component shared by every document of the process, with the count of the
// documents that use it.
namespace Idioma {

// Creates the component for the user's language; answers 1, or 0 after telling the user
// through the message service that the component is missing.
int CrearComponenteIdioma(const QString &codigoAplicacion, const QString &nombreAplicacion,
                          const ServicioConexion &conexion, ServicioMensajes &mensajes);
// Catalogue text n + 1000; empty when the component is missing or has no such text.
QString resLoad(int n);
// One document stops using the component; the last one releases it.
void Liberar();

// The locale numbers and dates are read and shown in: the system's, unless it is unset (C or
// POSIX, as on many servers and fresh installs), then its language's own: es_UY for Spanish
// (1), en_US for English (2).
QLocale LocaleDelPrograma(const QLocale &sistema, int idioma);
// Makes a language the process's: the locale above becomes the default, and Qt's own texts
// (its dialogs, the print preview, the standard buttons) are loaded in that language when
// Qt has them. The program asks for it (AplicarAlElegir) when it starts; a process that does
// not, such as a test, keeps its own locale.
void AplicarAlProceso(int idioma);
void AplicarAlElegir(bool si);

// The number of the language held (1 Spanish, 2 English); 0 when none is.
int Numero();

// For tests: what is held now.
const ComponenteIdioma *Actual();
int Cuenta();
// Component name for an application code and language number ("LNG_TCO_001.clsResources").
QString NombreComponente(const QString &codigoAplicacion, int idioma);

} // namespace Idioma
