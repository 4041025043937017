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
    int marcadas = 0;
    try {
        const QHash<qint32, SelloGuardado> guardados = LeerSellos(*conexion, porId.keys());
        for (auto it = porId.cbegin(); it != porId.cend(); ++it) {
            const SelloGuardado guardado = guardados.value(it.key());
            if (guardado.Vigente(g.Dato(it.value(), 4).toDateTime()))
                continue;
            m_avisos.insert(it.key(), textoAviso(it.key(), guardado.existe, guardado.estado));
            g.FijarImagen(it.value(), QString::fromLatin1(kImagen));
            ++marcadas;
        }
    } catch (const ErrorBaseDatos &) {
        // A failed look is tried again on the next notice or poll; the grid is unchanged.
    }
    return marcadas;
}

QString CambiosAjenos::textoAviso(qint32 id, bool existe, qint16 estado) const
{
    const std::optional<HistorialAsiento::Fila> u = HistorialAsiento::Ultimo(*m_datos.conexion(), id);
    const QString que = !existe ? QStringLiteral("Eliminado") : estado == EstadoAsiento::kPapelera ? QStringLiteral("Enviado a la papelera")
                                                                                                : QStringLiteral("Modificado");
    if (!u)
        return QStringLiteral("%1 por otro usuario. Se vuelve a leer al abrirlo.").arg(que);
    const QString quien = u->nombreUsuario.isEmpty() ? QStringLiteral("el usuario %1").arg(u->usuario) : u->nombreUsuario;
    return QStringLiteral("%1 por %2 el %3 a las %4. Se vuelve a leer al abrirlo.")
        .arg(que, quien, u->momento.toString(FormatoQtDeFecha(m_datos.formatoFecha)), u->momento.toString(QStringLiteral("hh:mm:ss")));
}

QString CambiosAjenos::Aviso(int fila) const
{
    const Grilla &g = m_asientos.grilla();
    if (fila < g.FilasFijas() || fila >= g.Filas() || g.Imagen(fila) != QLatin1String(kImagen))
        return {};
    return m_avisos.value(m_asientos.IdDeFila(fila));
}
