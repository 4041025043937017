// The program's command-line export, run as a user runs it: the files read back and
// compared with the database, and every bad request refused with a message and a status.
#include "comun/archivosleidos.h"
#include "comun/basesprueba.h"
#include "programa.h"

#include "store/basedemo.h"
#include "store/conexion.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class ExportarDesdeLinea : public ::testing::TestWithParam<Motor>
{
protected:
    ExportarDesdeLinea()
        : m_base(GetParam(), BaseDePrueba::Contenido::Demo)
    {
    }

    Salida correr(const QStringList &argumentos)
    {
        return Correr(QStringList{QStringLiteral("--db"), m_base.direccion()} + argumentos, m_carpeta.path());
    }

    QString ruta(const char *nombre) const { return m_carpeta.filePath(QString::fromLatin1(nombre)); }

    // The debit and credit sums in cents and the count of lines and entries of a month.
    std::tuple<qint64, qint64, int, int> totalesDelMes(const QString &desde, const QString &hasta)
    {
        auto rs = m_base.conexion().Abrir(
            QStringLiteral("Select Sum(Case When ACuDebe Is Not Null Then ACuImporteMC Else 0 End),"
                           " Sum(Case When ACuDebe Is Null Then ACuImporteMC Else 0 End), Count(*),"
                           " Count(Distinct AsiID) From cceAsientos Inner Join cceAsientoCuenta On AsiID = ACuIDAsiento"
                           " Where AsiEmpresa = 1 And AsiEstado <> 9 And AsiFechaAsiento Between ? And ?"),
            {desde, hasta});
        return {qRound64(rs->Campo(0).toDouble() * 100), qRound64(rs->Campo(1).toDouble() * 100), rs->Campo(2).toInt(),
                rs->Campo(3).toInt()};
    }

    static qint64 centavos(const QString &texto)
    {
        QString t = texto;
        t.remove(QLatin1Char('.')).replace(QLatin1Char(','), QLatin1Char('.'));
        return qRound64(t.toDouble() * 100);
    }

    BaseDePrueba m_base;
    QTemporaryDir m_carpeta;
};

TEST_P(ExportarDesdeLinea, MesEnCSVCuadraConLaBase)
{
    const QDate hoy = BaseDePrueba::Hoy();
    const QString mes = hoy.toString(QStringLiteral("yyyy-MM"));
    const Salida s = correr({QStringLiteral("--exportar"), ruta("mes.csv"), QStringLiteral("--mes"), mes});
    ASSERT_EQ(s.estado, 0) << s.errores.toStdString();

    const QJsonArray filas = LeerArchivoExportado("csv", ruta("mes.csv"));
    ASSERT_GT(filas.size(), 1);
    EXPECT_EQ(filas.at(0).toArray().at(2).toString(), QStringLiteral("Debe"));
    qint64 debe = 0;
    qint64 haber = 0;
    int lineas = 0;
    int asientos = 0;
    for (qsizetype i = 1; i < filas.size(); ++i) {
        const QJsonArray f = filas.at(i).toArray();
        ASSERT_EQ(f.size(), 6);
        EXPECT_NE(f.at(0).toString(), QStringLiteral("Nuevo Asiento"));
        if (f.at(0).toString().isEmpty() && f.at(1).toString().isEmpty())
            continue;
        if (QDate::fromString(f.at(0).toString(), QStringLiteral("dd/MM/yyyy")).isValid()) {
            ++asientos;
            continue;
        }
        if (f.at(0).toString().startsWith(QStringLiteral("....")) || f.at(1).toString().startsWith(QStringLiteral("....")))
            continue; // the difference row of an unbalanced entry is not stored
        ++lineas;
        debe += centavos(f.at(2).toString());
        haber += centavos(f.at(3).toString());
    }
    const auto [debeBase, haberBase, lineasBase, asientosBase] =
        totalesDelMes(QDate(hoy.year(), hoy.month(), 1).toString(Qt::ISODate),
                      QDate(hoy.year(), hoy.month(), hoy.daysInMonth()).toString(Qt::ISODate));
    EXPECT_EQ(asientos, asientosBase);
    EXPECT_EQ(lineas, lineasBase);
    EXPECT_EQ(debe, debeBase);
    EXPECT_EQ(haber, haberBase);
}

// An account searched without a project or department finds its lines of every project and
// department: 5.2.01 Sueldos carries them on all its lines.
TEST_P(ExportarDesdeLinea, UnaCuentaConProyectosSeEncuentraEntera)
{
    const Salida s = correr({QStringLiteral("--exportar"), ruta("sueldos.csv"), QStringLiteral("--cuenta"), QStringLiteral("5.2.01")});
    ASSERT_EQ(s.estado, 0) << s.errores.toStdString();
    int asientos = 0;
    const QJsonArray filas = LeerArchivoExportado("csv", ruta("sueldos.csv"));
    for (qsizetype i = 1; i < filas.size(); ++i) {
        const QJsonArray f = filas.at(i).toArray();
        if (QDate::fromString(f.at(0).toString(), QStringLiteral("dd/MM/yyyy")).isValid())
            ++asientos;
    }
    auto rs = m_base.conexion().Abrir(QStringLiteral(
        "Select Count(Distinct AsiID), Sum(Case When ACuProyecto <> 0 Or ACuDepartamento <> 0 Then 1 Else 0 End)"
        " From cceAsientos Inner Join cceAsientoCuenta On AsiID = ACuIDAsiento Inner Join cceCuentas On CueID = ACuCuenta"
        " Where AsiEmpresa = 1 And AsiEstado <> 9 And CueCodigo = '5.2.01'"));
    ASSERT_GT(rs->Campo(1).toInt(), 0) << "the demo's salaries carry projects or departments";
    EXPECT_EQ(asientos, rs->Campo(0).toInt());
}

TEST_P(ExportarDesdeLinea, BusquedaEnLibroYPDF)
{
    const QDate hoy = BaseDePrueba::Hoy();
    const QStringList busqueda{QStringLiteral("--desde"), hoy.addMonths(-2).toString(Qt::ISODate), QStringLiteral("--hasta"),
                               hoy.toString(Qt::ISODate), QStringLiteral("--cuenta"), QStringLiteral("1.1.01")};
    Salida s = correr(QStringList{QStringLiteral("--exportar"), ruta("caja.xlsx")} + busqueda);
    ASSERT_EQ(s.estado, 0) << s.errores.toStdString();
    const QJsonArray filas = LeerArchivoExportado("xlsx", ruta("caja.xlsx"));
    ASSERT_GT(filas.size(), 2);
    int fechas = 0;
    bool conCaja = true;
    bool enEsteAsiento = false;
    for (qsizetype i = 1; i < filas.size(); ++i) {
        const QJsonArray f = filas.at(i).toArray();
        if (f.at(0).isObject()) {
            // A new entry: the previous one must have had the account.
            conCaja = conCaja && (fechas == 0 || enEsteAsiento);
            enEsteAsiento = false;
            const QDate fecha = QDate::fromString(f.at(0).toObject().value(QStringLiteral("fecha")).toString(), Qt::ISODate);
            EXPECT_TRUE(fecha >= hoy.addMonths(-2) && fecha <= hoy) << fecha.toString().toStdString();
            ++fechas;
        }
        for (int c : {0, 1})
            enEsteAsiento = enEsteAsiento || f.at(c).toString().startsWith(QStringLiteral("1.1.01"));
        if (f.at(2).isObject())
            EXPECT_EQ(f.at(2).toObject().value(QStringLiteral("formato")).toString(), QStringLiteral("#,##0.00"));
    }
    EXPECT_TRUE(conCaja && enEsteAsiento);
    EXPECT_GT(fechas, 2);

    s = correr(QStringList{QStringLiteral("--exportar"), ruta("caja.pdf")} + busqueda);
    ASSERT_EQ(s.estado, 0) << s.errores.toStdString();
    QProcess p;
    p.start(QStringLiteral("pdftotext"), {ruta("caja.pdf"), QStringLiteral("-")});
    p.waitForFinished(60000);
    const QString texto = QString::fromUtf8(p.readAllStandardOutput());
    EXPECT_TRUE(texto.contains(QStringLiteral("Ingreso de Asientos")));
    EXPECT_TRUE(texto.contains(QStringLiteral("Página 1 de ")));
    EXPECT_TRUE(texto.contains(QStringLiteral("1.1.01")));

    // A page names the edition in its footer, as the window's export does.
    s = correr(QStringList{QStringLiteral("--exportar"), ruta("caja.htm")} + busqueda);
    ASSERT_EQ(s.estado, 0) << s.errores.toStdString();
    QFile pagina(ruta("caja.htm"));
    ASSERT_TRUE(pagina.open(QIODevice::ReadOnly));
    EXPECT_TRUE(QString::fromUtf8(pagina.readAll()).contains(QStringLiteral("<span class=\"stTitle\">Tarvo Contable</span>")));
}

TEST_P(ExportarDesdeLinea, PedidosMalosSeRechazanSinEscribir)
{
    const QString mes = BaseDePrueba::Hoy().toString(QStringLiteral("yyyy-MM"));
    const struct
    {
        QStringList argumentos;
        int estado;
        const char *mensaje;
    } casos[] = {
        {{QStringLiteral("--exportar"), ruta("x.csv"), QStringLiteral("--mes"), QStringLiteral("2026-13")}, 2, "--mes"},
        {{QStringLiteral("--exportar"), ruta("x.csv")}, 2, "Indique qué asientos"},
        {{QStringLiteral("--exportar"), ruta("x.csv"), QStringLiteral("--mes"), mes, QStringLiteral("--vista"), QStringLiteral("1")}, 2, "una sola forma"},
        {{QStringLiteral("--exportar"), ruta("x.doc"), QStringLiteral("--mes"), mes}, 2, ".csv, .xlsx, .htm o .pdf"},
        {{QStringLiteral("--exportar"), ruta("x.csv"), QStringLiteral("--desde"), QStringLiteral("31/12/2026")}, 2, "--desde"},
        {{QStringLiteral("--exportar"), ruta("x.csv"), QStringLiteral("--vista"), QStringLiteral("7")}, 2, "--vista"},
        {{QStringLiteral("--exportar"), ruta("x.csv"), QStringLiteral("--cuenta"), QStringLiteral("9.9.99")}, 1, "No existe la cuenta"},
        {{QStringLiteral("--exportar"), ruta("x.csv"), QStringLiteral("--cuenta"), QStringLiteral("5.2")}, 1, "agrupa otras cuentas"},
        {{QStringLiteral("--exportar"), QString(), QStringLiteral("--mes"), mes}, 2, "necesita el archivo"},
        {{QStringLiteral("--exportar"), ruta("no/x.htm"), QStringLiteral("--mes"), mes}, 1, "Error al exportar la información."},
        {{QStringLiteral("--exportar"), ruta("no/x.xlsx"), QStringLiteral("--mes"), mes}, 1, "Error al exportar la información."},
        {{QStringLiteral("--exportar"), ruta("no/x.pdf"), QStringLiteral("--mes"), mes}, 1, "Error al exportar la información."},
        // The command line admits whom the window admits: a user without rights, or none.
        {{QStringLiteral("--exportar"), ruta("x.csv"), QStringLiteral("--mes"), mes, QStringLiteral("--user"), QStringLiteral("3")}, 1,
         "Acceso denegado: el usuario 3"},
        {{QStringLiteral("--exportar"), ruta("x.csv"), QStringLiteral("--mes"), mes, QStringLiteral("--user"), QStringLiteral("99")}, 1,
         "Acceso denegado: el usuario 99"},
        {{QStringLiteral("--exportar"), ruta("x.csv"), QStringLiteral("--mes"), mes, QStringLiteral("--company"), QStringLiteral("7")}, 1,
         "Acceso denegado: el usuario 1 no puede ver los asientos de la empresa 7"},
    };
    for (const auto &c : casos) {
        const Salida s = correr(c.argumentos);
        EXPECT_EQ(s.estado, c.estado) << c.argumentos.join(QLatin1Char(' ')).toStdString();
        EXPECT_TRUE(s.errores.contains(QString::fromUtf8(c.mensaje))) << s.errores.toStdString();
    }
    EXPECT_EQ(QDir(m_carpeta.path()).entryList(QDir::Files | QDir::Hidden), QStringList{});
    EXPECT_FALSE(QFileInfo::exists(ruta("no")));
}

INSTANCIAR_EN_MOTORES(ExportarDesdeLinea);

} // namespace
