// The program's command-line export, run as a user runs it: the files read back and
// compared with the database, and every bad request refused with a message and a status.
#include "comun/archivosleidos.h"
#include "comun/basesprueba.h"
#include "exportacionlinea.h"
#include "programa.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class ExportarDesdeLinea : public ::testing::TestWithParam<Motor>
{
protected:
    Salida correr(const QString &archivo, const QStringList &argumentos)
    {
        return Correr(QStringList{QStringLiteral("--db"), m_base.direccion(), QStringLiteral("--exportar"), archivo} + argumentos,
                      m_carpeta.path());
    }
    QString ruta(const char *nombre) const { return m_carpeta.filePath(QString::fromLatin1(nombre)); }
    // The rows of an exported CSV whose first column is a date: the entries' header rows.
    int cabezales(const QJsonArray &filas)
    {
        int n = 0;
        for (const auto &f : filas)
            n += QDate::fromString(f.toArray().at(0).toString(), QStringLiteral("dd/MM/yyyy")).isValid() ? 1 : 0;
        return n;
    }

    BaseDePrueba m_base{GetParam(), BaseDePrueba::Contenido::Demo};
    QTemporaryDir m_carpeta;
};

// The month's entries, lines and sums in the file are the database's. A CSV file and a
// workbook need no display nor fonts: they are written where no display platform can be loaded.
TEST_P(ExportarDesdeLinea, MesEnCSVCuadraConLaBase)
{
    const QDate hoy = BaseDePrueba::Hoy();
    for (const char *archivo : {"mes.csv", "mes.xlsx"}) {
        const Salida s = Correr({QStringLiteral("--db"), m_base.direccion(), QStringLiteral("--exportar"), ruta(archivo),
                                 QStringLiteral("--mes"), hoy.toString(QStringLiteral("yyyy-MM"))},
                                m_carpeta.path(),
                                {QStringLiteral("env"), QStringLiteral("QT_QPA_PLATFORM=ninguna")});
        ASSERT_EQ(s.estado, 0) << archivo << s.errores.toStdString();
    }
    const QJsonArray filas = LeerArchivoExportado("csv", ruta("mes.csv"));
    EXPECT_EQ(LeerArchivoExportado("xlsx", ruta("mes.xlsx")).size(), filas.size());
    ASSERT_GT(filas.size(), 1);
    EXPECT_EQ(filas.at(0).toArray().at(2).toString(), QStringLiteral("Debe"));
    auto centavos = [](const QJsonValue &v) {
        return qRound64(v.toString().remove(QLatin1Char('.')).replace(QLatin1Char(','), QLatin1Char('.')).toDouble() * 100);
    };
    qint64 debe = 0, haber = 0, lineas = 0;
    for (qsizetype i = 1; i < filas.size(); ++i) {
        const QJsonArray f = filas.at(i).toArray();
        ASSERT_EQ(f.size(), 6);
        EXPECT_NE(f.at(0).toString(), QStringLiteral("Nuevo Asiento"));
        // Blank rows, the entries' header rows and the difference row of an unbalanced entry
        // (which is not stored) are no lines.
        if ((f.at(0).toString().isEmpty() && f.at(1).toString().isEmpty())
            || QDate::fromString(f.at(0).toString(), QStringLiteral("dd/MM/yyyy")).isValid()
            || f.at(0).toString().startsWith(QStringLiteral("....")) || f.at(1).toString().startsWith(QStringLiteral("....")))
            continue;
        ++lineas;
        debe += centavos(f.at(2));
        haber += centavos(f.at(3));
    }
    auto rs = m_base.conexion().Abrir(
        QStringLiteral("Select Sum(Case When ACuDebe Is Not Null Then ACuImporteMC Else 0 End),"
                       " Sum(Case When ACuDebe Is Null Then ACuImporteMC Else 0 End), Count(*), Count(Distinct AsiID)"
                       " From cceAsientos Inner Join cceAsientoCuenta On AsiID = ACuIDAsiento"
                       " Where AsiEmpresa = 1 And AsiEstado <> 9 And AsiFechaAsiento Between ? And ?"),
        {QDate(hoy.year(), hoy.month(), 1).toString(Qt::ISODate), QDate(hoy.year(), hoy.month(), hoy.daysInMonth()).toString(Qt::ISODate)});
    EXPECT_EQ(cabezales(filas), rs->Campo(3).toInt());
    EXPECT_EQ(lineas, rs->Campo(2).toInt());
    EXPECT_EQ(debe, qRound64(rs->Campo(0).toDouble() * 100));
    EXPECT_EQ(haber, qRound64(rs->Campo(1).toDouble() * 100));
}

// Amounts are written in the system's locale, or in the language's own when it has none:
// the program hands both over (every pairing is the language component's own test).
TEST_P(ExportarDesdeLinea, LosImportesSiguenElLocaleOElDelIdiomaSiNoHay)
{
    const QRegularExpression espanol(QStringLiteral("^\\d{1,3}(\\.\\d{3})*,\\d{2}$"));
    const QRegularExpression ingles(QStringLiteral("^\\d{1,3}(,\\d{3})*\\.\\d{2}$"));
    const struct {
        const char *locale;
        const char *idioma;
        const QRegularExpression &importe;
    } casos[] = {{"C", "1", espanol}, {"C", "2", ingles}, {"en_US.UTF-8", "1", ingles}};
    const QString mes = BaseDePrueba::Hoy().toString(QStringLiteral("yyyy-MM"));
    for (const auto &c : casos) {
        SCOPED_TRACE(std::string(c.locale) + " --lang " + c.idioma);
        const Salida s = Correr({QStringLiteral("--db"), m_base.direccion(), QStringLiteral("--exportar"), ruta("mes.csv"),
                                 QStringLiteral("--mes"), mes, QStringLiteral("--lang"), QString::fromLatin1(c.idioma)},
                                m_carpeta.path(), {}, QStringLiteral(ASIENTOS_PROGRAMA), QString::fromLatin1(c.locale));
        ASSERT_EQ(s.estado, 0) << s.errores.toStdString();
        int importes = 0, conMiles = 0;
        for (const auto &f : LeerArchivoExportado("csv", ruta("mes.csv"))) {
            const QString debe = f.toArray().at(2).toString();
            if (debe.isEmpty() || debe == QLatin1String("Debe") || debe == QLatin1String("Debit"))
                continue;
            ++importes;
            conMiles += debe.size() > 6 ? 1 : 0;
            EXPECT_TRUE(c.importe.match(debe).hasMatch()) << debe.toStdString();
        }
        EXPECT_GT(conMiles, 0);
        EXPECT_GT(importes, conMiles);
    }
}

// An account searched without a project or department finds its lines of every project and
// department: 5.2.01 Sueldos carries them on all its lines.
TEST_P(ExportarDesdeLinea, UnaCuentaConProyectosSeEncuentraEntera)
{
    const Salida s = correr(ruta("sueldos.csv"), {QStringLiteral("--cuenta"), QStringLiteral("5.2.01")});
    ASSERT_EQ(s.estado, 0) << s.errores.toStdString();
    auto rs = m_base.conexion().Abrir(QStringLiteral(
        "Select Count(Distinct AsiID), Sum(Case When ACuProyecto <> 0 Or ACuDepartamento <> 0 Then 1 Else 0 End)"
        " From cceAsientos Inner Join cceAsientoCuenta On AsiID = ACuIDAsiento Inner Join cceCuentas On CueID = ACuCuenta"
        " Where AsiEmpresa = 1 And AsiEstado <> 9 And CueCodigo = '5.2.01'"));
    ASSERT_GT(rs->Campo(1).toInt(), 0) << "the demo's salaries carry projects or departments";
    EXPECT_EQ(cabezales(LeerArchivoExportado("csv", ruta("sueldos.csv"))), rs->Campo(0).toInt());
}

// Written a few entries at a time, as a long export is, each file is the one written at once.
TEST_P(ExportarDesdeLinea, PorPartesSaleLoMismoQueDeUnaVez)
{
    QTextStream errores(stderr);
    auto exportar = [&](const char *nombre, int porParte) {
        PedidoExportacion p;
        p.archivo = ruta(nombre);
        p.mes = BaseDePrueba::Hoy();
        p.asientosPorParte = porParte;
        EXPECT_EQ(::ExportarDesdeLinea(p, m_base.conexion(), 1, [](int n) { return QString::number(n); }, errores), 0) << nombre;
        QFile f(p.archivo);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    };
    for (const char *extension : {"csv", "htm"}) {
        const QByteArray entero = exportar(QStringLiteral("entero.%1").arg(QLatin1String(extension)).toUtf8().constData(), 0);
        EXPECT_GT(entero.count('\n'), 20) << extension;
        for (int porParte : {1, 3})
            EXPECT_EQ(exportar(QStringLiteral("partes%1.%2").arg(porParte).arg(QLatin1String(extension)).toUtf8().constData(),
                               porParte),
                      entero)
                << extension << " " << porParte;
    }
    exportar("entero.xlsx", 0);
    exportar("partes.xlsx", 2);
    EXPECT_EQ(LeerArchivoExportado("xlsx", ruta("partes.xlsx")), LeerArchivoExportado("xlsx", ruta("entero.xlsx")));
}

// A search between two dates for an account, to a workbook, a PDF and a page: the entries of
// those dates with the account, amounts with the currency's mask; the page's footer names the
// edition, as the window's export does.
TEST_P(ExportarDesdeLinea, BusquedaEnLibroYPDF)
{
    const QDate hoy = BaseDePrueba::Hoy();
    const QDate desde = hoy.addMonths(-2);
    const QStringList busqueda{QStringLiteral("--desde"), desde.toString(Qt::ISODate), QStringLiteral("--hasta"), hoy.toString(Qt::ISODate),
                               QStringLiteral("--cuenta"), QStringLiteral("1.1.01")};
    ASSERT_EQ(correr(ruta("caja.xlsx"), busqueda).estado, 0);
    int asientos = 0;
    for (const auto &fila : LeerArchivoExportado("xlsx", ruta("caja.xlsx"))) {
        const QJsonArray f = fila.toArray();
        asientos += f.at(0).isObject() ? 1 : 0; // a header row: its date as a date cell
        if (f.at(2).isObject())
            EXPECT_EQ(f.at(2).toObject().value(QStringLiteral("formato")).toString(), QStringLiteral("#,##0.00"));
    }
    EXPECT_GT(asientos, 2);
    EXPECT_EQ(asientos, m_base.Valor(QStringLiteral("Select Count(Distinct AsiID) From cceAsientos Inner Join cceAsientoCuenta On AsiID = ACuIDAsiento"
                                                    " Inner Join cceCuentas On CueID = ACuCuenta Where AsiEmpresa = 1 And AsiEstado <> 9"
                                                    " And CueCodigo = '1.1.01' And AsiFechaAsiento Between ? And ?"),
                                     {desde.toString(Qt::ISODate), hoy.toString(Qt::ISODate)})
                            .toInt());

    ASSERT_EQ(correr(ruta("caja.pdf"), busqueda).estado, 0);
    const QString texto = TextoPDF(ruta("caja.pdf"));
    for (const char *parte : {"Ingreso de Asientos", "Página 1 de ", "1.1.01"})
        EXPECT_TRUE(texto.contains(QString::fromUtf8(parte))) << parte;
    // In English, the title and the pages' foot too.
    ASSERT_EQ(correr(ruta("cash.pdf"), busqueda + QStringList{QStringLiteral("--lang"), QStringLiteral("2")}).estado, 0);
    const QString ingles = TextoPDF(ruta("cash.pdf"));
    for (const char *parte : {"Journal Entries", "Page 1 of ", "1.1.01"})
        EXPECT_TRUE(ingles.contains(QString::fromUtf8(parte))) << parte;
    EXPECT_FALSE(ingles.contains(QStringLiteral("Página")));

    ASSERT_EQ(correr(ruta("caja.htm"), busqueda).estado, 0);
    QFile pagina(ruta("caja.htm"));
    ASSERT_TRUE(pagina.open(QIODevice::ReadOnly));
    EXPECT_TRUE(QString::fromUtf8(pagina.readAll()).contains(QStringLiteral("<span class=\"stTitle\">Tarvo Contable</span>")));
}

TEST_P(ExportarDesdeLinea, PedidosMalosSeRechazanSinEscribir)
{
    const QString mes = BaseDePrueba::Hoy().toString(QStringLiteral("yyyy-MM"));
    const struct
    {
        const char *archivo;
        QStringList argumentos;
        int estado;
        const char *mensaje;
    } casos[] = {
        {"x.csv", {"--mes", "2026-13"}, 2, "--mes"}, {"x.csv", {}, 2, "Indique qué asientos"},
        {"x.csv", {"--mes", mes, "--vista", "1"}, 2, "una sola forma"},
        {"x.doc", {"--mes", mes}, 2, ".csv, .xlsx, .htm o .pdf"}, {"x.csv", {"--desde", "31/12/2026"}, 2, "--desde"},
        {"x.csv", {"--vista", "7"}, 2, "--vista"}, {"x.csv", {"--cuenta", "9.9.99"}, 1, "No existe la cuenta"},
        {"x.csv", {"--cuenta", "5.2"}, 1, "agrupa otras cuentas"}, {nullptr, {"--mes", mes}, 2, "necesita el archivo"},
        {"no/x.htm", {"--mes", mes}, 1, "Error al exportar la información."},
        {"no/x.xlsx", {"--mes", mes}, 1, "Error al exportar la información."},
        {"no/x.pdf", {"--mes", mes}, 1, "Error al exportar la información."},
        // The command line admits whom the window admits: a user without rights, or none.
        {"x.csv", {"--mes", mes, "--user", "3"}, 1, "Acceso denegado: el usuario 3"},
        {"x.csv", {"--mes", mes, "--user", "99"}, 1, "Acceso denegado: el usuario 99"},
        {"x.csv", {"--mes", mes, "--company", "7"}, 1, "Acceso denegado: el usuario 1 no puede ver los asientos de la empresa 7"},
        // In English, in English, wherever --lang stands.
        {"x.csv", {"--lang", "2"}, 2, "Say which entries to export"},
        {"x.doc", {"--mes", mes, "--lang", "2"}, 2, ".csv, .xlsx, .htm or .pdf"},
        {"x.csv", {"--mes", "2026-13", "--lang", "2"}, 2, "--mes expects YYYY-MM"},
        {"x.csv", {"--cuenta", "5.2", "--lang", "2"}, 1, "groups other accounts"},
        {"x.csv", {"--mes", mes, "--user", "3", "--lang", "2"}, 1, "Access denied: user 3"},
        {"x.csv", {"--nada", "--lang", "2"}, 2, "Unknown option: --nada"},
    };
    for (const auto &c : casos) {
        SCOPED_TRACE((QString::fromLatin1(c.archivo) + QLatin1Char(' ') + c.argumentos.join(QLatin1Char(' '))).toStdString());
        const Salida s = correr(c.archivo ? ruta(c.archivo) : QString(), c.argumentos);
        EXPECT_EQ(s.estado, c.estado);
        EXPECT_TRUE(s.errores.contains(QString::fromUtf8(c.mensaje))) << s.errores.toStdString();
    }
    // Currencies that cannot be read stop the export: amounts are never written without them.
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table genMonedas Rename Column MonRedondeo To MonOtro"));
    const Salida s = correr(ruta("x.csv"), {QStringLiteral("--mes"), mes});
    EXPECT_EQ(s.estado, 1);
    EXPECT_TRUE(s.errores.contains(QStringLiteral("Error al obtener los parámetros para el ingreso de asientos."))) << s.errores.toStdString();
    EXPECT_EQ(QDir(m_carpeta.path()).entryList(QDir::Files | QDir::Hidden), QStringList{});
    EXPECT_FALSE(QFileInfo::exists(ruta("no")));
}

INSTANCIAR_EN_MOTORES(ExportarDesdeLinea);

} // namespace

// A search by one date alone is a request; one whose end comes before its start is not.
TEST(PedidoExportacion, FechasDeLaBusqueda)
{
    PedidoExportacion p;
    p.archivo = QStringLiteral("x.csv");
    p.hayCriterios = true;
    for (const auto &[desde, hasta, valido] : {std::tuple{"2026-01-01", "", true}, std::tuple{"", "2026-01-01", true},
                                              std::tuple{"2026-01-31", "2026-01-31", true}, std::tuple{"2026-02-01", "2026-01-31", false}}) {
        p.criterios.prmFInit = QString::fromLatin1(desde);
        p.criterios.prmFEnd = QString::fromLatin1(hasta);
        EXPECT_EQ(p.Validar([](int n) { return QString::number(n); }).isEmpty(), valido) << desde << " " << hasta;
    }
}
