#include "vistas.h"

#include "store/valoressql.h"

namespace {

QString fecha(const QDate &d, const ContextoAsientos &ctx)
{
    return FechaSQL(d, ctx.delimitadorFecha, ctx.patronFecha);
}

QString filtroEmpresa(const ContextoAsientos &ctx)
{
    return QStringLiteral(" And AsiEmpresa = ") + NumeroSQL(qint64(ctx.empresa)) + QStringLiteral(" And AsiEstado <> 9");
}

// Keeps redraw off for the length of a load and switches it on again in every case.
class SinRedibujar
{
public:
    explicit SinRedibujar(Grilla &g)
        : m_g(g)
    {
        m_g.FijarRedibujar(false);
    }
    ~SinRedibujar() { m_g.FijarRedibujar(true); }

private:
    Grilla &m_g;
};

} // namespace

QString DesdeAsientos()
{
    return QStringLiteral(" From (((((cceAsientos ")
         + QStringLiteral("INNER JOIN cceAsientoCuenta On cceAsientos.AsiID = cceAsientoCuenta.ACuIDAsiento)")
         + QStringLiteral("INNER JOIN cceCuentas ON cceAsientoCuenta.ACuCuenta = cceCuentas.CueID) ")
         + QStringLiteral("LEFT JOIN genLibros ON genLibros.LibCodigo = cceAsientos.AsiTipo) ")
         + QStringLiteral("LEFT JOIN cceProyectos ON cceAsientoCuenta.ACuProyecto = cceProyectos.ProCodigo) ")
         + QStringLiteral("LEFT JOIN cceDepartamentos ON cceAsientoCuenta.ACuDepartamento = cceDepartamentos.DepCodigo) ");
}

QString SqlAsientoEnGrilla(qint32 id, const QString &listaIDs, const ContextoAsientos &ctx)
{
    QString sql = QStringLiteral("Select * ") + DesdeAsientos();
    if (!listaIDs.isEmpty())
        sql += QStringLiteral(" Where AsiID IN(") + listaIDs + QStringLiteral(")");
    else
        sql += QStringLiteral(" Where AsiID = ") + NumeroSQL(qint64(id));
    return sql + filtroEmpresa(ctx) + QStringLiteral(" Order By AsiFechaAsiento, AsiID, AcuDebe desc, CueCodigo");
}

QString SqlVista(int vista, const QDate &hoy, const QDate &primerDiaMes, const ContextoAsientos &ctx)
{
    QString q;
    switch (vista) {
    case Vista::kUltimos5:
    case Vista::kUltimos10:
        q = QStringLiteral("Select * ") + DesdeAsientos() + QStringLiteral(" Where ASiID IN (")
          + (vista == Vista::kUltimos5 ? QStringLiteral("Select Top 5") : QStringLiteral("Select Top 10"))
          + QStringLiteral(" ASiID From cceAsientos Where AsiEmpresa = ") + NumeroSQL(qint64(ctx.empresa))
          + QStringLiteral(" And AsiEstado <> 9 Order By ASiID Desc)");
        break;
    case Vista::kHoy:
        q = QStringLiteral("Select * ") + DesdeAsientos() + QStringLiteral(" Where AsiFechaAsiento > ")
          + fecha(hoy.addDays(-1), ctx) + QStringLiteral(" And AsiFechaAsiento < ") + fecha(hoy.addDays(1), ctx);
        break;
    case Vista::kUltimos15Dias:
        q = QStringLiteral("Select *") + DesdeAsientos() + QStringLiteral(" Where AsiFechaAsiento BetWeen ")
          + fecha(hoy.addDays(-14), ctx) + QStringLiteral(" And ") + fecha(hoy, ctx);
        break;
    default:
        if (vista < Vista::kPrimerMes)
            return {};
        q = QStringLiteral("Select *") + DesdeAsientos() + QStringLiteral(" Where AsiFechaAsiento BetWeen ")
          + fecha(primerDiaMes, ctx) + QStringLiteral(" And ") + fecha(primerDiaMes.addMonths(1).addDays(-1), ctx);
        break;
    }
    return q + QStringLiteral(" And AsiEmpresa = ") + NumeroSQL(qint64(ctx.empresa))
         + QStringLiteral(" And AsiEstado <> 9 Order By AsiFechaAsiento, AsiID");
}

QString NombreMes(const QDate &d, const QLocale &locale)
{
    QString mes = locale.standaloneMonthName(d.month(), QLocale::LongFormat);
    if (!mes.isEmpty())
        mes[0] = mes[0].toUpper();
    return mes + QLatin1Char(' ') + QString::number(d.year());
}

QString CaptionVista(int vista, const QDate &primerDiaMes, const std::function<QString(int)> &texto, const QLocale &locale)
{
    QString c;
    if (vista == Vista::kPersonalizada)
        c = texto(1050);
    else if (vista == Vista::kEnEdicion)
        c = texto(1051);
    else if (vista >= 0 && vista <= 9)
        c = texto(1052 + vista);
    else if (vista >= Vista::kPrimerMes && primerDiaMes.isValid())
        c = NombreMes(primerDiaMes, locale);
    const QString ver = texto(1075);
    return c.isEmpty() ? ver : ver + QStringLiteral(" : ") + c;
}

QVector<MesDelMenu> MesesDelMenu(const QDate &hoy, const QDate &menorCierre, const std::function<QString(int)> &texto,
                                 const QLocale &locale)
{
    QVector<MesDelMenu> meses;
    const QDate esteMes(hoy.year(), hoy.month(), 1);
    for (int i = 0; i < Vista::kCantidadMeses; ++i) {
        MesDelMenu m;
        m.primerDia = esteMes.addMonths(-i);
        m.caption = NombreMes(m.primerDia, locale);
        const QDate ultimoDia = m.primerDia.addMonths(1).addDays(-1);
        if (menorCierre.isValid() && menorCierre > ultimoDia)
            m.caption += QLatin1Char(' ') + texto(1058);
        meses.append(m);
    }
    return meses;
}

Resultado<QDate> MenorFechaCierre(Conexion &conexion)
{
    return Intentar([&] {
        auto rs = conexion.Abrir(QStringLiteral("Select Min(CueFechaCerrada) From cceCuentas"));
        QDate d;
        if (!rs->Fin())
            d = FechaDeValor(rs->Campo(0));
        rs->Cerrar();
        return d;
    });
}

std::optional<Fallo> CargarAsientoEnGrilla(AsientosGrilla &a, Conexion &conexion, qint32 id, int fila,
                                           const QString &listaIDs)
{
    SinRedibujar sr(a.grilla());
    try {
        a.LlenarGrilla(conexion, SqlAsientoEnGrilla(id, listaIDs, a.contexto()), fila);
    } catch (const ErrorBaseDatos &e) {
        return FalloDe(1916, e);
    }
    return std::nullopt;
}

std::optional<Fallo> CargarAsientos(AsientosGrilla &a, Conexion &conexion, int vista, const QString &sql,
                                    const QDate &hoy, const QDate &primerDiaMes, int *filaElegida)
{
    if (filaElegida)
        *filaElegida = -1;
    if (vista == Vista::kEnEdicion)
        return std::nullopt;
    Grilla &g = a.grilla();
    if (vista == Vista::kRecienIngresados) {
        if (g.Filas() <= g.FilasFijas()) {
            a.FilaNuevoAsiento();
        } else {
            ReducirARecienIngresados(a);
        }
        if (filaElegida)
            *filaElegida = g.Filas() - 1;
        return std::nullopt;
    }
    const QString q = vista == Vista::kPersonalizada ? sql : SqlVista(vista, hoy, primerDiaMes, a.contexto());
    SinRedibujar sr(g);
    g.FijarFilas(g.FilasFijas());
    try {
        const int primera = a.LlenarGrilla(conexion, q, 0);
        if (filaElegida)
            *filaElegida = primera;
    } catch (const ErrorBaseDatos &e) {
        // A view that could not be read shows none of it, not a part that looks whole, and
        // still offers a new entry.
        g.FijarFilas(g.FilasFijas());
        a.FilaNuevoAsiento();
        if (filaElegida)
            *filaElegida = g.FilasFijas();
        return FalloDe(1917, e);
    }
    return std::nullopt;
}

void ReducirARecienIngresados(AsientosGrilla &a)
{
    Grilla &g = a.grilla();
    SinRedibujar sr(g);
    // One pass that drops what the row-by-row walk of the suite drops: every stored entry
    // (id above 0) not in draft, with all its rows.
    std::vector<bool> quitar(size_t(g.Filas()), false);
    for (int r = g.FilasFijas(); r < g.Filas() - 1; ++r) {
        if (!a.EsFilaCabezal(r) || g.Dato(r, 0).toInt() <= 0 || g.Dato(r, 3).toInt() == EstadoAsiento::kBorrador)
            continue;
        const int ultima = std::min(a.UltimaFilaAsiento(r), g.Filas() - 2);
        for (int k = r; k <= ultima; ++k)
            quitar[size_t(k)] = true;
        r = ultima;
    }
    g.QuitarFilasMarcadas(quitar);
    a.ResetCabezal();
}

LecturaPorPartes::LecturaPorPartes(AsientosGrilla &asientos, Conexion &conexion)
    : m_asientos(asientos)
    , m_conexion(conexion)
{
}

std::optional<Fallo> LecturaPorPartes::Empezar(const QString &sql)
{
    return Intentar([&] { m_rs = m_conexion.Abrir(sql); });
}

Resultado<int> LecturaPorPartes::Siguiente(int asientos)
{
    return Intentar([&] {
        Grilla &grilla = m_asientos.grilla();
        grilla.FijarFilas(grilla.FilasFijas());
        return m_asientos.LlenarParte(*m_rs, asientos);
    });
}
