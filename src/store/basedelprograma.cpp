#include "basedelprograma.h"

#include "basedemo.h"
#include "esquema.h"

#include <QUrl>
#include <QUrlQuery>

QString DireccionVisible(const QString &direccion)
{
    const DireccionBD d = DireccionBD::Leer(direccion);
    if (d.motor == Motor::SQLite)
        return d.archivo;
    // Neither the password of the address nor one given as ?password= is shown.
    QUrl url(direccion.trimmed());
    QUrlQuery consulta(url);
    consulta.removeAllQueryItems(QStringLiteral("password"));
    url.setQuery(consulta);
    return url.toString(QUrl::RemovePassword);
}

namespace {

QString textoIncompleta(const QString &visible, const QStringList &tablas)
{
    return QStringLiteral("La base de datos %1 tiene solo algunas tablas del programa: le faltan %2. No se cambió nada en ella.")
        .arg(visible, TablasFaltantes(tablas).join(QStringLiteral(", ")));
}

} // namespace

std::unique_ptr<ConexionQt> AbrirBaseDelPrograma(const QString &direccion, int esperaBloqueoMs)
{
    DireccionBD d = DireccionBD::Leer(direccion);
    d.esperaBloqueoMs = esperaBloqueoMs;
    auto conexion = ConexionQt::Abrir(d);
    const QString visible = DireccionVisible(direccion);
    QStringList tablas;
    switch (ExaminarEsquema(*conexion, &tablas)) {
    case EstadoEsquema::Vacia:
        throw ErrorBaseDatos(QStringLiteral("La base de datos %1 está vacía: no tiene las tablas del programa. Para crearlas con la"
                                            " empresa de demostración ejecute «asientos --db %1 --inicializar» (con la contraseña, si la tiene), o agregue"
                                            " --sin-demo para una empresa sin datos.")
                                 .arg(visible));
    case EstadoEsquema::Ajena:
        throw ErrorBaseDatos(QStringLiteral("La base de datos %1 no es de este programa: tiene otras tablas y no las de los"
                                            " asientos. No se cambió nada en ella.")
                                 .arg(visible));
    case EstadoEsquema::Incompleta:
        throw ErrorBaseDatos(textoIncompleta(visible, tablas));
    case EstadoEsquema::DelPrograma:
        break;
    }
    if (!conexion->soloLectura())
        CompletarEsquema(*conexion, tablas);
    conexion->ModoCompartido();
    return conexion;
}

Resultado<std::unique_ptr<ConexionQt>> ConexionDelPrograma(const QString &direccion)
{
    try {
        return AbrirBaseDelPrograma(direccion);
    } catch (const ErrorBaseDatos &e) {
        return Fallo{0, e.descripcion(), true};
    }
}

Inicializacion InicializarBase(const QString &direccion, bool conDemo, const QDate &hoy)
{
    Inicializacion r;
    const QString visible = DireccionVisible(direccion);
    try {
        auto conexion = ConexionQt::Abrir(DireccionBD::Leer(direccion), true);
        QStringList tablas;
        switch (ExaminarEsquema(*conexion, &tablas)) {
        case EstadoEsquema::DelPrograma:
            r.resultado = Inicializacion::Resultado::YaExistia;
            r.informe = QStringLiteral("La base de datos %1 ya tiene las tablas del programa; no se cambió nada.").arg(visible);
            return r;
        case EstadoEsquema::Ajena:
            r.resultado = Inicializacion::Resultado::Ajena;
            r.informe = QStringLiteral("La base de datos %1 tiene otras tablas y no es de este programa; no se cambió nada.").arg(visible);
            return r;
        case EstadoEsquema::Incompleta:
            r.resultado = Inicializacion::Resultado::Ajena;
            r.informe = textoIncompleta(visible, tablas);
            return r;
        case EstadoEsquema::Vacia:
            break;
        }
        if (conexion->soloLectura())
            throw ErrorBaseDatos(QStringLiteral("no se puede escribir en ella"));
        Transaccion tx(*conexion);
        if (conDemo)
            CrearBaseDemo(*conexion, hoy);
        else
            CrearBaseVacia(*conexion, hoy);
        tx.Confirmar();
        conexion->ModoCompartido();
        auto rs = conexion->Abrir(QStringLiteral("Select Count(*) From cceAsientos"));
        const qint64 asientos = rs->Campo(0).toLongLong();
        rs->Cerrar();
        r.resultado = Inicializacion::Resultado::Creada;
        r.informe = conDemo ? QStringLiteral("Base de datos %1 creada con la empresa de demostración (%2 asientos).").arg(visible).arg(asientos)
                            : QStringLiteral("Base de datos %1 creada con una empresa vacía; el usuario 1 (Administrador) puede todo.")
                                  .arg(visible);
    } catch (const ErrorBaseDatos &e) {
        r.resultado = Inicializacion::Resultado::Error;
        r.informe = QStringLiteral("No se pudo crear la base de datos %1: %2").arg(visible, e.descripcion());
    }
    return r;
}
