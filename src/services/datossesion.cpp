#include "datossesion.h"

#include "store/valoressql.h"

#include <QStringList>

#include <algorithm>
#include <iterator>

namespace {

const QDate kSinFecha(1939, 12, 31);

QList<std::pair<QString, qint16>> LeerCodigos(Conexion &conexion, const QString &tabla, const QString &prefijo)
{
    QList<std::pair<QString, qint16>> codigos;
    auto rs = conexion.Abrir(QStringLiteral("Select %1Codigo, %1Abreviacion, %1Nombre From %2 Where %1Codigo <> 0 Order By %1Codigo")
                                 .arg(prefijo, tabla));
    for (; !rs->Fin(); rs->MoverSiguiente()) {
        const QString abreviacion = rs->Texto(prefijo + QStringLiteral("Abreviacion")).trimmed();
        const QString nombre = rs->Texto(prefijo + QStringLiteral("Nombre")).trimmed();
        codigos.append({abreviacion.isEmpty() ? nombre : abreviacion + QStringLiteral(" - ") + nombre,
                        qint16(rs->Entero(prefijo + QStringLiteral("Codigo")))});
    }
    return codigos;
}

} // namespace

Resultado<QList<std::pair<QString, qint16>>> LeerProyectos(Conexion &conexion)
{
    return Intentar([&] { return LeerCodigos(conexion, QStringLiteral("cceProyectos"), QStringLiteral("Pro")); });
}

Resultado<QList<std::pair<QString, qint16>>> LeerDepartamentos(Conexion &conexion)
{
    return Intentar([&] { return LeerCodigos(conexion, QStringLiteral("cceDepartamentos"), QStringLiteral("Dep")); });
}

Resultado<QList<std::pair<QString, qint16>>> LeerLibros(Conexion &conexion, const ParametrosSistema &p, bool excluirSistema)
{
    QString sql = QStringLiteral("Select * From genLibros ");
    if (excluirSistema)
        sql += QStringLiteral("Where LibCodigo Not In (")
             + QStringList{QString::number(p.libroResumen), QString::number(p.libroApertura), QString::number(p.libroADC),
                           QString::number(p.libroPrimeraApertura), QString::number(p.libroCierre)}
                   .join(QStringLiteral(", "))
             + QStringLiteral(")");
    sql += QStringLiteral(" Order By LibNombre");
    return Intentar([&] {
        QList<std::pair<QString, qint16>> libros;
        auto rs = conexion.Abrir(sql);
        for (; !rs->Fin(); rs->MoverSiguiente())
            libros.append({rs->Texto(QStringLiteral("LibNombre")).trimmed(), qint16(rs->Entero(QStringLiteral("LibCodigo")))});
        return libros;
    });
}

bool ConfigEmpresa::ConAutoriza() const
{
    return usuarioYAutoriza.size() == 2 && usuarioYAutoriza.at(1) == QLatin1Char('1');
}

QString SqlParametrosSistema()
{
    return QStringLiteral("Select * from genParametros ")
         + QStringLiteral(" Where ParNombre In ('defBDDateCharSQLs', 'defBDDateFormat', ")
         + QStringLiteral(" 'sis_LibroAsientoResumen', 'sis_LibroAsientoApertura', 'sis_LibroADC', "
                          "'sis_LibroAsientoPrimeraApertura', 'sis_Multiusuario', 'sis_LibroAsientoCierre')");
}

std::optional<Fallo> CargarParametrosSistema(Conexion &conexion, ParametrosSistema &p)
{
    static const char *const nombres[] = {"defbddatecharsqls", "defbddateformat", "sis_multiusuario",
                                          "sis_libroasientoresumen", "sis_libroasientoapertura",
                                          "sis_libroasientocierre", "sis_libroadc",
                                          "sis_libroasientoprimeraapertura"};
    qint16 *const libros[] = {&p.libroResumen, &p.libroApertura, &p.libroCierre, &p.libroADC,
                              &p.libroPrimeraApertura};
    try {
        auto rs = conexion.Abrir(SqlParametrosSistema());
        for (; !rs->Fin(); rs->MoverSiguiente()) {
            const QString nombre = rs->Texto(QStringLiteral("ParNombre")).trimmed().toLower();
            const int cual = int(std::find(std::begin(nombres), std::end(nombres), nombre) - std::begin(nombres));
            const QString columna = cual < 2 ? QStringLiteral("ParTexto") : QStringLiteral("ParValor");
            if (cual >= 8 || rs->EsNulo(columna))
                continue;
            if (cual == 0)
                p.delimitadorFecha = rs->Texto(columna).trimmed();
            else if (cual == 1)
                p.formatoFecha = rs->Texto(columna).trimmed();
            else if (cual == 2)
                p.multiusuario = rs->Numero(columna) != 0;
            else
                *libros[cual - 3] = qint16(rs->Entero(columna));
        }
        rs->Cerrar();
    } catch (const ErrorBaseDatos &e) {
        return FalloDe(1926, e);
    }
    return std::nullopt;
}

qint16 LibroDeEmpPrms(const QString &prms, qint16 actual)
{
    for (const QString &item : prms.split(QLatin1Char('|'))) {
        if (item.left(4).toLower() != QLatin1String("lib:"))
            continue;
        const QString resto = QString(item).remove(QLatin1String("lib:"), Qt::CaseInsensitive);
        bool ok = false;
        const double n = resto.trimmed().toDouble(&ok);
        if (ok && n >= -32768 && n <= 32767)
            actual = qint16(qRound(n));
    }
    return actual;
}

std::optional<Fallo> LeerConfigEmpresa(Conexion &conexion, qint32 idEmpresa, ConfigEmpresa &c, bool &leida)
{
    leida = false;
    c.FechaCierreEjercicio = QDate(1900, 1, 1);
    c.usuarioYAutoriza = QStringLiteral("00");
    try {
        auto rs = conexion.Abrir(QStringLiteral("Select * from cceEmpresas Where EmpID = ") + NumeroSQL(qint64(idEmpresa)));
        if (!rs->Fin()) {
            auto leer = [&](const char *columna, auto aplicar) {
                const QString nombre = QString::fromLatin1(columna);
                if (!rs->EsNulo(nombre))
                    aplicar(nombre);
            };
            c.NombreEmpresa = rs->Texto(QStringLiteral("EmpNombre"));
            leer("EmpMostrarCodigoCta", [&](const QString &n) { c.mostrarCodigoCta = rs->Entero(n) != 0; });
            leer("EmpMonedaContabilidad", [&](const QString &n) { c.monedaContabilidad = qint16(rs->Entero(n)); });
            leer("EmpValoresUsuarioYAuroriza", [&](const QString &n) { c.usuarioYAutoriza = rs->Texto(n).trimmed(); });
            leer("EmpTipoTCComprobantes", [&](const QString &n) { c.tipoTCComprobantes = qint16(rs->Entero(n)); });
            leer("EmpFCierreEjercicio", [&](const QString &n) { c.FechaCierreEjercicio = rs->Fecha(n); });
            leer("EmpClase", [&](const QString &n) { c.clase = quint8(rs->Entero(n)); });
            leer("EmpPrms", [&](const QString &n) { c.libroPorDefecto = LibroDeEmpPrms(rs->Texto(n), c.libroPorDefecto); });
            leer("EmpFechaCotizacion", [&](const QString &n) { c.fechaCotizacion = quint8(rs->Entero(n)); });
            leida = true;
        }
        rs->Cerrar();
        c.baseEjercicio = c.FechaCierreEjercicio;

        if (c.libroPorDefecto == 0) {
            auto libro = conexion.Abrir(QStringLiteral("Select Top 1 LibCodigo From genLibros Where LibDelSistema = 0"));
            if (!libro->Fin())
                c.libroPorDefecto = qint16(QVariant(libro->Campo(0)).toLongLong());
            libro->Cerrar();
        }
    } catch (const ErrorBaseDatos &e) {
        leida = false;
        return FalloDe(1920, e);
    }
    return std::nullopt;
}

QDate InicioEjercicio(const QDate &d, const QDate &cierre)
{
    const QDate inicio = cierre.addDays(1);
    QDate resultado(d.year(), inicio.month(), inicio.day());
    if (!resultado.isValid()) // 29 February in a common year
        resultado = QDate(d.year(), inicio.month(), 28);
    if (d < resultado)
        resultado = resultado.addYears(-1);
    return resultado;
}

std::optional<Fallo> GetFechaAsientoApertura(Conexion &conexion, const ParametrosSistema &p,
                                             const ConfigEmpresa &c, qint32 idEmpresa,
                                             const QDate &hoy, QDate &fecha)
{
    const QString empresa = NumeroSQL(qint64(idEmpresa));
    try {
        QDate d = kSinFecha;
        auto rs = conexion.Abrir(QStringLiteral("Select Max(AsiFechaAsiento) From cceAsientos Where AsiTipo IN(")
                                 + NumeroSQL(qint64(p.libroPrimeraApertura)) + QStringLiteral(", ")
                                 + NumeroSQL(qint64(p.libroApertura)) + QStringLiteral(")")
                                 + QStringLiteral(" And AsiEstado = 1 And AsiEmpresa = ") + empresa);
        if (!rs->Fin() && !rs->Campo(0).isNull())
            d = FechaDeValor(rs->Campo(0));
        rs->Cerrar();
        if (d != kSinFecha) {
            fecha = d;
            return std::nullopt;
        }

        rs = conexion.Abrir(QStringLiteral("Select Min(AsiFechaAsiento) From cceAsientos")
                            + QStringLiteral(" Where AsiEmpresa = ") + empresa + QStringLiteral(" And AsiEstado = 1 ")
                            + QStringLiteral("Union ")
                            + QStringLiteral("Select Min(ComFecha) From cceComprobantes Where ComIDEmpresa = ") + empresa
                            + QStringLiteral(" And  (ComEstado <> 9 Or ComEstado Is Null) "));
        bool primero = true;
        for (; !rs->Fin(); rs->MoverSiguiente()) {
            const QVariant v = rs->Campo(0);
            if (v.isNull())
                continue;
            const QDate valor = FechaDeValor(v);
            if (primero || valor > d)
                d = valor;
            primero = false;
        }
        rs->Cerrar();
        if (d == kSinFecha)
            d = hoy;
        fecha = InicioEjercicio(d, c.baseEjercicio);
    } catch (const ErrorBaseDatos &e) {
        return FalloDe(1909, e);
    }
    return std::nullopt;
}

