#include "historialasiento.h"

#include "entries/modeloasiento.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QLocale>

#include <cmath>
#include <functional>
#include <optional>

namespace HistorialAsiento {

namespace {

double cuatroDecimales(double v)
{
    return std::round(v * 10000.0) / 10000.0;
}

QJsonValue entero(const Recordset &rs, const QString &campo)
{
    return rs.EsNulo(campo) ? QJsonValue() : QJsonValue(rs.Entero(campo));
}

QJsonValue numero(const Recordset &rs, const QString &campo)
{
    return rs.EsNulo(campo) ? QJsonValue() : QJsonValue(cuatroDecimales(rs.Numero(campo)));
}

QJsonValue momento(const Recordset &rs, const QString &campo)
{
    const QDateTime t = FechaHoraDeValor(rs.Campo(campo));
    return t.isValid() ? QJsonValue(t.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz"))) : QJsonValue();
}

QString texto(const QJsonObject &o)
{
    return o.isEmpty() ? QString() : QString::fromUtf8(QJsonDocument(o).toJson(QJsonDocument::Compact));
}

QJsonObject objeto(const QVariant &v)
{
    if (v.isNull())
        return {};
    return QJsonDocument::fromJson(v.toString().toUtf8()).object();
}

} // namespace

QJsonObject LeerGuardado(Conexion &conexion, qint32 asiID)
{
    auto rs = conexion.Abrir(QStringLiteral("Select * From cceAsientos Where AsiID = ?"), {asiID});
    if (rs->Fin())
        return {};
    QJsonObject o;
    o.insert(QStringLiteral("AsiID"), asiID);
    o.insert(QStringLiteral("Empresa"), entero(*rs, QStringLiteral("AsiEmpresa")));
    o.insert(QStringLiteral("Estado"), entero(*rs, QStringLiteral("AsiEstado")));
    o.insert(QStringLiteral("Fecha"), FechaDeValor(rs->Campo(QStringLiteral("AsiFechaAsiento"))).toString(Qt::ISODate));
    o.insert(QStringLiteral("Leyenda"), rs->Campo(QStringLiteral("AsiLeyenda")).toString());
    o.insert(QStringLiteral("Libro"), entero(*rs, QStringLiteral("AsiTipo")));
    o.insert(QStringLiteral("Autoriza"), entero(*rs, QStringLiteral("AsiUsuarioVerificador")));
    o.insert(QStringLiteral("Usuario"), entero(*rs, QStringLiteral("AsiUsuario")));
    o.insert(QStringLiteral("FechaModificado"), momento(*rs, QStringLiteral("AsiFechaModificado")));
    o.insert(QStringLiteral("FechaEstado"), momento(*rs, QStringLiteral("AsiFechaEstado")));
    rs->Cerrar();

    QJsonArray lineas;
    rs = conexion.Abrir(QStringLiteral("Select l.*, c.CueCodigo From cceAsientoCuenta l Left Join cceCuentas c On c.CueID = l.ACuCuenta"
                                       " Where l.ACuIDAsiento = ? Order By l.ACuOrden, l.ACuID"),
                        {asiID});
    for (; !rs->Fin(); rs->MoverSiguiente()) {
        QJsonObject l;
        l.insert(QStringLiteral("Orden"), entero(*rs, QStringLiteral("ACuOrden")));
        l.insert(QStringLiteral("Cuenta"), entero(*rs, QStringLiteral("ACuCuenta")));
        l.insert(QStringLiteral("Codigo"), rs->Campo(QStringLiteral("CueCodigo")).toString().trimmed());
        l.insert(QStringLiteral("Proyecto"), entero(*rs, QStringLiteral("ACuProyecto")));
        l.insert(QStringLiteral("Departamento"), entero(*rs, QStringLiteral("ACuDepartamento")));
        l.insert(QStringLiteral("Debe"), numero(*rs, QStringLiteral("ACuDebe")));
        l.insert(QStringLiteral("Haber"), numero(*rs, QStringLiteral("AcuHaber")));
        l.insert(QStringLiteral("ImporteMC"), numero(*rs, QStringLiteral("ACuImporteMC")));
        lineas.append(l);
    }
    rs->Cerrar();
    o.insert(QStringLiteral("Lineas"), lineas);
    return o;
}

void Registrar(Conexion &conexion, qint32 asiID, qint16 usuario, const QDateTime &momento, const char *operacion,
               const QJsonObject &antes, const QJsonObject &despues)
{
    const QJsonObject &alguno = despues.isEmpty() ? antes : despues;
    const qint64 empresa = alguno.value(QStringLiteral("Empresa")).toInteger();
    auto textoONulo = [](const QJsonObject &o) { return o.isEmpty() ? QVariant(QMetaType(QMetaType::QString)) : QVariant(texto(o)); };
    const qint64 id = conexion.Insertar(QStringLiteral("Insert Into cceAsientosHistorial (HisAsiento, HisEmpresa, HisUsuario, HisMomento,"
                                                       " HisOperacion, HisAntes, HisDespues) Values (?, ?, ?, ?, ?, ?, ?)"),
                                        {asiID, empresa, usuario, Conexion::ValorFechaHora(momento), QString::fromLatin1(operacion),
                                         textoONulo(antes), textoONulo(despues)},
                                        QStringLiteral("HisID"));
    if (qstrcmp(operacion, kDeshacer) != 0)
        conexion.escrituras().append(id);
    conexion.Avisar(QString::fromLatin1(kCanal), QStringLiteral("%1|%2|%3").arg(asiID).arg(empresa).arg(usuario));
}

namespace {

// Rows with the user's name: an entry's, oldest first or only the newest, or one by its id.
QList<Fila> leerFilas(Conexion &conexion, const QString &condicion, const QVariant &valor)
{
    auto rs = conexion.Abrir(QStringLiteral("Select h.*, u.UsuNombre From cceAsientosHistorial h"
                                            " Left Join segUsuarios u On u.UsuID = h.HisUsuario Where ")
                                 + condicion,
                             {valor});
    QList<Fila> filas;
    for (; !rs->Fin(); rs->MoverSiguiente()) {
        Fila f;
        f.id = rs->Entero(QStringLiteral("HisID"));
        f.asiento = qint32(rs->Entero(QStringLiteral("HisAsiento")));
        f.momento = FechaHoraDeValor(rs->Campo(QStringLiteral("HisMomento")));
        f.usuario = rs->EsNulo(QStringLiteral("HisUsuario")) ? 0 : qint16(rs->Entero(QStringLiteral("HisUsuario")));
        f.nombreUsuario = rs->Campo(QStringLiteral("UsuNombre")).toString().trimmed();
        f.operacion = rs->Campo(QStringLiteral("HisOperacion")).toString().trimmed();
        f.antes = objeto(rs->Campo(QStringLiteral("HisAntes")));
        f.despues = objeto(rs->Campo(QStringLiteral("HisDespues")));
        filas.append(f);
    }
    rs->Cerrar();
    return filas;
}

std::optional<Fila> ultimo(Conexion &conexion, qint32 asiID)
{
    const QList<Fila> filas = leerFilas(conexion, QStringLiteral("h.HisAsiento = ? Order By h.HisID Desc Limit 1"), asiID);
    return filas.isEmpty() ? std::nullopt : std::optional<Fila>(filas.first());
}

} // namespace

Resultado<QJsonObject> Guardado(Conexion &conexion, qint32 asiID)
{
    return Intentar([&] { return LeerGuardado(conexion, asiID); });
}

Resultado<QList<Fila>> Leer(Conexion &conexion, qint32 asiID)
{
    return Intentar([&] { return leerFilas(conexion, QStringLiteral("h.HisAsiento = ? Order By h.HisID"), asiID); });
}

Resultado<std::optional<Fila>> Ultimo(Conexion &conexion, qint32 asiID)
{
    return Intentar([&] { return ultimo(conexion, asiID); });
}

Resultado<std::optional<Fila>> LeerFila(Conexion &conexion, qint64 id)
{
    return Intentar([&] {
        const QList<Fila> filas = leerFilas(conexion, QStringLiteral("h.HisID = ?"), id);
        return filas.isEmpty() ? std::nullopt : std::optional<Fila>(filas.first());
    });
}

Resultado<QList<EnPapelera>> Papelera(Conexion &conexion, qint32 empresa)
{
    return Intentar([&] {
        QList<EnPapelera> lista;
        auto rs = conexion.Abrir(QStringLiteral("Select AsiID, AsiFechaAsiento, AsiLeyenda, AsiFechaEstado, AsiFechaModificado From cceAsientos"
                                                " Where AsiEmpresa = ? And AsiEstado = 9 Order By AsiFechaEstado Desc, AsiID Desc"),
                                 {empresa});
        for (; !rs->Fin(); rs->MoverSiguiente()) {
            EnPapelera e;
            e.asiID = qint32(rs->Entero(QStringLiteral("AsiID")));
            e.fecha = rs->Fecha(QStringLiteral("AsiFechaAsiento"));
            e.leyenda = rs->Campo(QStringLiteral("AsiLeyenda")).toString().trimmed();
            e.enviadoEl = rs->FechaHora(QStringLiteral("AsiFechaEstado"));
            e.sello = rs->FechaHora(QStringLiteral("AsiFechaModificado"));
            lista.append(e);
        }
        rs->Cerrar();
        for (EnPapelera &e : lista) {
            const std::optional<Fila> ultima = ultimo(conexion, e.asiID);
            if (!ultima
                || (ultima->operacion != QLatin1String(kPapelera)
                    && ultima->despues.value(QStringLiteral("Estado")).toInt() != EstadoAsiento::kPapelera))
                continue;
            e.enviadoPor = ultima->nombreUsuario.isEmpty() ? QString::number(ultima->usuario) : ultima->nombreUsuario;
            e.enviadoEl = ultima->momento;
            if (ultima->antes.value(QStringLiteral("Estado")).toInt(EstadoAsiento::kPapelera) != EstadoAsiento::kPapelera)
                e.antes = ultima->antes;
        }
        return lista;
    });
}

QString NombreOperacion(const QString &operacion, const Textos &texto)
{
    static const std::pair<const char *, int> nombres[] = {{kAlta, 2111},     {kCambio, 2112},      {kEstado, 2113},
                                                           {kPapelera, 2114}, {kEliminacion, 2115}, {kRestauracion, 2116},
                                                           {kDeshacer, 2117}};
    for (const auto &[clave, numero] : nombres)
        if (operacion == QLatin1String(clave))
            return texto(numero);
    return operacion;
}

namespace {

// An entry's header fields and lines in the user's words, as the history shows them.
class EnPalabras
{
public:
    EnPalabras(const Textos &texto, const QHash<int, QString> &libros)
        : m_texto(texto)
        , m_libros(libros)
        , m_nada(texto(2125))
        , m_ninguno(texto(1169))
    {
    }

    struct Campo
    {
        const char *clave;
        int nombre;
        QString (EnPalabras::*mostrar)(const QJsonValue &) const;
    };
    static const Campo kCampos[5];

    QString nombre(const Campo &c) const { return m_texto(c.nombre); }
    QString valor(const Campo &c, const QJsonObject &asiento) const { return (this->*c.mostrar)(asiento.value(QLatin1String(c.clave))); }

    // "cuenta 1.1.01 debe 100,00": by its code, or its number when the code is unknown.
    QString linea(const QJsonObject &l) const
    {
        const bool debe = !l.value(QStringLiteral("Debe")).isNull();
        const QString cuenta = l.value(QStringLiteral("Codigo")).toString();
        return m_texto(2126).arg(cuenta.isEmpty() ? QString::number(l.value(QStringLiteral("Cuenta")).toInteger()) : cuenta,
                                 m_texto(debe ? 2065 : 2066),
                                 m_local.toString(l.value(debe ? QStringLiteral("Debe") : QStringLiteral("Haber")).toDouble(), 'f', 2));
    }

private:
    QString estado(const QJsonValue &v) const
    {
        switch (v.toInt(-1)) {
        case EstadoAsiento::kBorrador:
            return m_texto(2012);
        case EstadoAsiento::kRegistrado:
            return m_texto(2123);
        case EstadoAsiento::kInconcluso:
            return m_texto(2013);
        case EstadoAsiento::kPapelera:
            return m_texto(2124);
        default:
            return m_nada;
        }
    }
    // A book or an authoriser of 0 is none, as an empty column is.
    QString codigo(const QJsonValue &v) const { return v.toInt(0) == 0 ? m_ninguno : QString::number(v.toInt()); }
    QString libro(const QJsonValue &v) const { return v.toInt(0) == 0 ? m_ninguno : m_libros.value(v.toInt(), codigo(v)); }
    QString literal(const QJsonValue &v) const { return v.isString() ? QLatin1Char('"') + v.toString() + QLatin1Char('"') : m_nada; }

    const Textos &m_texto;
    const QHash<int, QString> &m_libros;
    const QString m_nada, m_ninguno;
    const QLocale m_local;
};

const EnPalabras::Campo EnPalabras::kCampos[5] = {{"Estado", 2118, &EnPalabras::estado}, {"Fecha", 2119, &EnPalabras::literal},
                                                  {"Leyenda", 2120, &EnPalabras::literal}, {"Libro", 2121, &EnPalabras::libro},
                                                  {"Autoriza", 2122, &EnPalabras::codigo}};

} // namespace

QStringList Diferencias(const QJsonObject &antes, const QJsonObject &despues, const Textos &texto,
                        const QHash<int, QString> &libros)
{
    const EnPalabras palabras(texto, libros);
    QStringList cambios;
    for (const EnPalabras::Campo &c : EnPalabras::kCampos) {
        const QString a = palabras.valor(c, antes);
        const QString d = palabras.valor(c, despues);
        if (a != d)
            cambios << QStringLiteral("%1: %2 → %3").arg(palabras.nombre(c), a, d);
    }
    const QJsonArray la = antes.value(QStringLiteral("Lineas")).toArray();
    const QJsonArray ld = despues.value(QStringLiteral("Lineas")).toArray();
    if (la != ld) {
        for (const QJsonValue &v : la)
            if (!ld.contains(v))
                cambios << QStringLiteral("− ") + palabras.linea(v.toObject());
        for (const QJsonValue &v : ld)
            if (!la.contains(v))
                cambios << QStringLiteral("+ ") + palabras.linea(v.toObject());
    }
    return cambios;
}

QStringList Version(const QJsonObject &asiento, const Textos &texto, const QHash<int, QString> &libros)
{
    const EnPalabras palabras(texto, libros);
    QStringList filas;
    for (const EnPalabras::Campo &c : EnPalabras::kCampos)
        filas << QStringLiteral("%1: %2").arg(palabras.nombre(c), palabras.valor(c, asiento));
    for (const QJsonValue &l : asiento.value(QStringLiteral("Lineas")).toArray())
        filas << palabras.linea(l.toObject());
    return filas;
}

} // namespace HistorialAsiento
