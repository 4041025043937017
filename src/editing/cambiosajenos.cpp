#include "cambiosajenos.h"

#include "editing/sesion.h"
#include "entries/historialasiento.h"
#include "entries/modeloasiento.h"

#include <QPointer>
#include <QStringList>

CambiosAjenos::CambiosAjenos(DatosDocumento &datos, AsientosGrilla &asientos, FilasVisibles filasVisibles, QObject *padre)
    : QObject(padre)
    , m_datos(datos)
    , m_asientos(asientos)
    , m_filasVisibles(std::move(filasVisibles))
{
    m_sondeo.setInterval(kIntervaloMs);
    connect(&m_sondeo, &QTimer::timeout, this, [this] { Revisar(); });
}

void CambiosAjenos::Iniciar()
{
    Conexion *conexion = m_datos.conexion();
    if (!conexion)
        return;
    // The connection may outlive this document; a notice after it is gone is dropped.
    const QPointer<CambiosAjenos> yo(this);
    const bool conAvisos = conexion->Escuchar(QString::fromLatin1(HistorialAsiento::kCanal), [yo](const QString &carga) {
        if (yo)
            yo->recibir(carga);
    });
    // With notices the look at the entries on screen is only a fallback, slower: it catches
    // what was written while the server was away, and its query brings a dropped session
    // back, with its notices.
    m_sondeo.start(conAvisos ? kIntervaloConAvisosMs : kIntervaloMs);
}

// A notice "AsiID|empresa|usuario": the entry's header rows in the grid, wherever they are.
void CambiosAjenos::recibir(const QString &carga)
{
    const QStringList partes = carga.split(QLatin1Char('|'));
    if (partes.size() < 2 || partes[1].toInt() != m_datos.idEmpresa())
        return;
    const qint32 id = partes[0].toInt();
    const Grilla &g = m_asientos.grilla();
    QList<int> cabezales;
    for (int r = g.FilasFijas(); r < g.Filas(); ++r)
        if (m_asientos.EsFilaCabezal(r) && m_asientos.IdDeFila(r) == id)
            cabezales << r;
    if (!cabezales.isEmpty())
        Revisar(cabezales);
}

int CambiosAjenos::Revisar(QList<int> cabezales)
{
    Conexion *conexion = m_datos.conexion();
    Grilla &g = m_asientos.grilla();
    if (!conexion)
        return 0;
    if (cabezales.isEmpty() && m_filasVisibles) {
        const auto [primera, ultima] = m_filasVisibles();
        for (int r = std::max(primera, g.FilasFijas()); r <= std::min(ultima, g.Filas() - 1); ++r)
            if (m_asientos.EsFilaCabezal(r))
                cabezales << r;
    }
    // Entries being edited or already marked are left as they are.
    QHash<qint32, int> porId;
    for (int r : std::as_const(cabezales)) {
        const qint32 id = m_asientos.IdDeFila(r);
        const QString imagen = g.Imagen(r);
        if (id > 0 && imagen != QLatin1String("edicion") && imagen != QLatin1String(kImagen))
            porId.insert(id, r);
    }
    if (porId.isEmpty())
        return 0;
    // A look that fails is not told: it is tried again on the next notice or poll, and the
    // rows not marked yet stay as they are.
    int marcadas = 0;
    const auto guardados = LeerSellos(*conexion, porId.keys());
    if (!guardados)
        return marcadas;
    for (auto it = porId.cbegin(); it != porId.cend(); ++it) {
        const SelloGuardado guardado = guardados->value(it.key());
        if (guardado.Vigente(g.Dato(it.value(), 4).toDateTime()))
            continue;
        const auto aviso = textoAviso(it.key(), guardado.existe, guardado.estado);
        if (!aviso)
            return marcadas;
        m_avisos.insert(it.key(), *aviso);
        g.FijarImagen(it.value(), QString::fromLatin1(kImagen));
        ++marcadas;
    }
    return marcadas;
}

Resultado<QString> CambiosAjenos::textoAviso(qint32 id, bool existe, qint16 estado) const
{
    const auto ultimo = HistorialAsiento::Ultimo(*m_datos.conexion(), id);
    if (!ultimo)
        return ultimo.fallo();
    const std::optional<HistorialAsiento::Fila> &u = *ultimo;
    const int que = !existe ? 2127 : estado == EstadoAsiento::kPapelera ? 2128 : 2129;
    if (!u)
        return m_datos.texto(2130).arg(m_datos.texto(que));
    const QString quien = u->nombreUsuario.isEmpty() ? m_datos.texto(2132).arg(u->usuario) : u->nombreUsuario;
    return m_datos.texto(2131).arg(m_datos.texto(que), quien, u->momento.toString(FormatoQtDeFecha(m_datos.formatoFecha)),
                                   u->momento.toString(QStringLiteral("hh:mm:ss")));
}

QString CambiosAjenos::Aviso(int fila) const
{
    const Grilla &g = m_asientos.grilla();
    if (fila < g.FilasFijas() || fila >= g.Filas() || g.Imagen(fila) != QLatin1String(kImagen))
        return {};
    return m_avisos.value(m_asientos.IdDeFila(fila));
}
