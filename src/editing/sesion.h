#pragma once

#include "store/conexion.h"
#include "store/fallo.h"

#include <QDate>
#include <QString>

#include <optional>

// System parameters of the suite (genParametros), process-wide.
struct ParametrosSistema
{
    QString delimitadorFecha;   // defBDDateCharSQLs
    QString formatoFecha;       // defBDDateFormat
    bool multiusuario = false;
    qint16 libroResumen = 0;
    qint16 libroApertura = 0;
    qint16 libroCierre = 0;
    qint16 libroADC = 0;
    qint16 libroPrimeraApertura = 0;
};

// The current company's configuration (cceEmpresas).
struct ConfigEmpresa
{
    QString NombreEmpresa;
    bool mostrarCodigoCta = false;
    qint16 monedaContabilidad = 0;
    QString usuarioYAutoriza = QStringLiteral("00");
    qint16 tipoTCComprobantes = 0;
    QDate FechaCierreEjercicio{1900, 1, 1};
    QDate baseEjercicio{1900, 1, 1};    // copy of the closing date, base of the fiscal year
    quint8 clase = 0;
    qint16 libroPorDefecto = 0;
    quint8 fechaCotizacion = 0;

    // Entries carry an authoriser: the second character of the setting is "1".
    bool ConAutoriza() const;
};

extern const QString kModuloAsientos; // "PasajeAsientos"

// Reads the parameters into p; on an error the values read so far stay and the failure
// (text 1926) is answered.
std::optional<Fallo> CargarParametrosSistema(Conexion &conexion, ParametrosSistema &p);
QString SqlParametrosSistema();

// Reads the company row into c (steps up to the default book). leida answers whether the
// row was there. On an error: text 1920, values read so far stay.
std::optional<Fallo> LeerConfigEmpresa(Conexion &conexion, qint32 idEmpresa, ConfigEmpresa &c, bool &leida);
// The default book from EmpPrms: the last "lib:N" item with a number; 0 when none.
qint16 LibroDeEmpPrms(const QString &prms, qint16 actual);

// The date of the opening-balance entry: the latest registered one in the opening books;
// otherwise the start of the fiscal year of the company's latest first activity (or of
// hoy). On an error: text 1909, fecha keeps its value.
std::optional<Fallo> GetFechaAsientoApertura(Conexion &conexion, const ParametrosSistema &p,
                                             const ConfigEmpresa &c, qint32 idEmpresa,
                                             const QDate &hoy, QDate &fecha);
// Start of the fiscal year (closing date + 1 day) in which d lies.
QDate InicioEjercicio(const QDate &d, const QDate &cierre);

bool TienePermiso(const QString &letras, QChar letra);
// Whether the letters let the user in at all: to see entries (Q), add (A), change (M) or
// delete (E). The window and the command line admit the same users.
bool PuedeEntrar(const QString &letras);
QString NombreEdicion(const QString &claveSesion);

// Date display format in the suite's notation ("dd/mm/yyyy") as a Qt display format.
QString FormatoQtDeFecha(const QString &formatoSuite);
