#pragma once

#include "store/conexion.h"
#include "store/fallo.h"

#include <QDate>
#include <QList>
#include <QString>

#include <optional>
#include <utility>

// What a session reads of the database when it starts: the suite's parameters, the
// company's configuration, the opening-balance date, and the lists its fields offer.

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

// The books by name, the system books left out when asked; the projects and the departments
// lines may carry, as "abbreviation - name" and code. A failure carries 0: the caller tells
// it with its own text.
Resultado<QList<std::pair<QString, qint16>>> LeerLibros(Conexion &conexion, const ParametrosSistema &p, bool excluirSistema);
Resultado<QList<std::pair<QString, qint16>>> LeerProyectos(Conexion &conexion);
Resultado<QList<std::pair<QString, qint16>>> LeerDepartamentos(Conexion &conexion);
