// generar_base RUTA.sqlite [--asientos N] [--desde AAAA-MM-DD]
//
// Writes a new SQLite database with the demo company and, in company 1, N more entries of
// four lines each spread evenly over two years: a database of realistic volume to try the
// grid, the searches and the exporters on. The entries are written column by column as the
// demo writes its own, with the demo's postable accounts, books, projects and departments;
// each one balances to the cent in the accounting currency.
#include "store/azar.h"
#include "store/basedemo.h"
#include "store/conexionqt.h"
#include "store/direccionbd.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QList>
#include <QLocale>
#include <QMap>
#include <QTime>

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace {

constexpr int kAsientosPorDefecto = 25000;
constexpr int kMaximoAsientos = 5000000;
constexpr int kLineasPorAsiento = 4;
constexpr int kAsientosPorTanda = 2000; // entries held in memory before they are written

void escribir(FILE *salida, const QString &texto)
{
    std::fputs(texto.toUtf8().constData(), salida);
    std::fputc('\n', salida);
}

QString uso()
{
    return QStringLiteral("uso: generar_base RUTA.sqlite [--asientos N] [--desde AAAA-MM-DD]\n"
                          "  --asientos N   asientos de cuatro líneas que se agregan a la demostración (por defecto %1)\n"
                          "  --desde FECHA  primer día de los dos años que cubren (por defecto el primer día del mes\n"
                          "                 de hace 23 meses, así el último mes de los datos es el actual)")
        .arg(kAsientosPorDefecto);
}

struct Opciones
{
    QString ruta;
    int asientos = kAsientosPorDefecto;
    QDate desde;
};

// Reads the command line; answers the reason when it cannot.
QString leerOpciones(const QStringList &argumentos, Opciones &o)
{
    for (qsizetype i = 1; i < argumentos.size(); ++i) {
        QString a = argumentos[i];
        QString valor;
        bool conValor = false;
        const qsizetype igual = a.indexOf(QLatin1Char('='));
        if (a.startsWith(QLatin1String("--")) && igual > 0) {
            valor = a.mid(igual + 1);
            a = a.left(igual);
            conValor = true;
        }
        if (a == QLatin1String("--asientos") || a == QLatin1String("--desde")) {
            if (!conValor) {
                if (i + 1 >= argumentos.size())
                    return QStringLiteral("falta el valor de %1").arg(a);
                valor = argumentos[++i];
            }
            if (a == QLatin1String("--asientos")) {
                bool ok = false;
                o.asientos = valor.toInt(&ok);
                if (!ok || o.asientos < 0 || o.asientos > kMaximoAsientos)
                    return QStringLiteral("--asientos espera un número entero entre 0 y %1, no «%2»").arg(kMaximoAsientos).arg(valor);
            } else {
                o.desde = QDate::fromString(valor, Qt::ISODate);
                if (!o.desde.isValid() || valor.size() != 10)
                    return QStringLiteral("--desde espera una fecha AAAA-MM-DD, no «%1»").arg(valor);
            }
        } else if (a.startsWith(QLatin1String("--"))) {
            return QStringLiteral("opción desconocida: %1").arg(a);
        } else if (o.ruta.isEmpty()) {
            o.ruta = a;
        } else {
            return QStringLiteral("sobra el argumento «%1»").arg(a);
        }
    }
    if (o.ruta.isEmpty())
        return QStringLiteral("falta la ruta de la base a crear");
    if (!o.desde.isValid()) {
        const QDate mes = QDate::currentDate().addMonths(-23);
        o.desde = QDate(mes.year(), mes.month(), 1);
    }
    return {};
}

QVariant centesimos(qint64 v) { return double(v) / 100.0; }
const QVariant kSinNumero{QMetaType(QMetaType::Double)};


struct Cuenta
{
    int id = 0;
    QString codigo;
    int moneda = 0; // 0: the accounting currency
};

// Kinds of entries. Each line asks for an account of a group of the chart ("1.2" is
// "Créditos"; any account of the type, the code's first digit, if the group has none) and
// takes its share of its side by weight. The last line is always a credit in the accounting
// currency: it takes the cents a foreign line loses in the conversion.
// Tokens in the legend: {n} document number, {c} customer, {p} supplier, {m} month.
struct LineaModelo
{
    const char *grupo;
    bool debe;
    int peso;
};

struct Modelo
{
    const char *leyenda;
    const char *libro; // by name; the default book if the demo has no such book
    int frecuencia;
    qint64 minimo, maximo; // total of a side, in pesos
    LineaModelo lineas[kLineasPorAsiento];
};

constexpr bool D = true;
constexpr bool H = false;

const Modelo kModelos[] = {
    {"Factura {n} cliente {c}", "Ventas", 30, 1500, 180000, {{"1.2", D, 80}, {"1.1", D, 42}, {"4.1", H, 100}, {"2.3", H, 22}}},
    {"Nota de crédito {n}, cliente {c}", "Ventas", 4, 500, 30000, {{"4.1", D, 100}, {"2.3", D, 22}, {"1.2", H, 72}, {"1.1", H, 50}}},
    {"Cobro recibo {n} - {c}", "Caja y Bancos", 18, 2000, 150000, {{"1.1", D, 97}, {"5.4", D, 3}, {"1.2", H, 60}, {"1.2", H, 40}}},
    {"Compra factura {n} proveedor {p}", "Compras", 20, 2000, 220000, {{"1.3", D, 78}, {"1.2", D, 22}, {"2.1", H, 70}, {"1.1", H, 30}}},
    {"Pago a {p}, orden {n}", "Caja y Bancos", 14, 3000, 160000, {{"2.1", D, 96}, {"5.4", D, 4}, {"1.1", H, 55}, {"1.1", H, 45}}},
    {"Sueldos de {m} - liquidación {n}", "Sueldos", 4, 90000, 600000, {{"5.2", D, 80}, {"5.2", D, 20}, {"2.3", H, 65}, {"2.3", H, 35}}},
    {"Ajuste según informe \"{n}\" del contador", "Diario", 3, 500, 40000, {{"5.3", D, 70}, {"5.5", D, 30}, {"2.3", H, 80}, {"1.1", H, 20}}},
    {"Préstamo {n}: cuota e intereses", "Caja y Bancos", 3, 20000, 90000, {{"2.2", D, 85}, {"5.4", D, 15}, {"1.1", H, 50}, {"1.1", H, 50}}},
};

// Some with accents, a comma, a double quote or an apostrophe, so exporters are exercised.
const char *const kClientes[] = {
    "Pérez", "Rodríguez, María", "Almacén \"La Esquina\"", "Constructora del Este S.A.", "Estudio Núñez & Asoc.",
    "Peña Hnos.", "Barraca O'Neill", "Colegio San Javier", "Inmobiliaria Pocitos", "Gómez",
};
const char *const kProveedores[] = {
    "Distribuidora Sur S.A.", "Maderas Paysandú", "Importadora \"El Ancla\" Ltda.", "Eléctrica Central",
    "Sosa, Ramírez y Cía.", "Pinturas Arazatí", "Bulonera Uruguaya",
};

struct Linea
{
    int cuenta;
    bool debe;
    qint64 importe, importeMC; // cents of the account's currency and of the accounting one
    int proyecto, departamento;
};

class Generador
{
public:
    Generador(Conexion &conexion, const QDate &desde, int cantidad)
        : m_c(conexion), m_desde(desde), m_cantidad(cantidad)
    {
    }

    void Generar();
    QDate primera() const { return m_primera; }
    QDate ultima() const { return m_ultima; }

private:
    void leerDemo();
    void leerCotizaciones(int moneda, int tipoCotizacion);
    qint64 tasa(int moneda, const QDate &fecha) const;
    QList<int> grupo(const char *prefijo, bool extranjeras) const;
    int elegirCuenta(const char *prefijo, bool extranjera, const QList<int> &usadas);
    QString leyenda(const Modelo &m, const QDate &fecha);
    void armar(const Modelo &m, const QDate &fecha, QList<Linea> &lineas);

    Conexion &m_c;
    QDate m_desde;
    int m_cantidad;
    Azar m_azar{0x6E7E2A7B45E00025ull};
    int m_monedaContabilidad = Demo::kMonedaPesos;
    QList<Cuenta> m_cuentas;
    QHash<QByteArray, QList<int>> m_locales, m_extranjeras; // positions in m_cuentas by group of the chart
    QList<int> m_todasLocales;
    QHash<int, QMap<QDate, qint64>> m_tasas; // per currency: rate in ten-thousandths by date
    QHash<QString, int> m_libros;
    int m_libroPorDefecto = Demo::kLibroDiario;
    QList<int> m_proyectos, m_departamentos;
    int m_numero = 100; // document numbers of the legends
    QDate m_primera, m_ultima; // dates of the entries written
};

void Generador::leerDemo()
{
    {
        auto rs = m_c.Abrir(QStringLiteral("SELECT EmpMonedaContabilidad, EmpTipoTCComprobantes FROM cceEmpresas WHERE EmpID = ?"),
                            {Demo::kEmpresa});
        if (rs->Fin())
            throw ErrorBaseDatos(QStringLiteral("la demostración no tiene la empresa %1").arg(Demo::kEmpresa));
        m_monedaContabilidad = int(rs->Entero(QStringLiteral("EmpMonedaContabilidad")));
        const QVariant tipo = rs->Campo(QStringLiteral("EmpTipoTCComprobantes"));
        rs->Cerrar();
        // Postable accounts: not folders, not closed.
        auto cs = m_c.Abrir(QStringLiteral("SELECT CueID, CueCodigo, CueMoneda FROM cceCuentas WHERE CueIDEmpresa = ?"
                                           " AND CueEsCarpeta = 0 AND CueFechaCerrada IS NULL ORDER BY CueCodigo"),
                            {Demo::kEmpresa});
        QList<int> monedas;
        for (; !cs->Fin(); cs->MoverSiguiente()) {
            Cuenta c;
            c.id = int(cs->Entero(QStringLiteral("CueID")));
            c.codigo = cs->Texto(QStringLiteral("CueCodigo"));
            c.moneda = cs->Campo(QStringLiteral("CueMoneda")).toInt();
            if (c.moneda == m_monedaContabilidad)
                c.moneda = 0;
            if (c.moneda != 0 && !monedas.contains(c.moneda))
                monedas << c.moneda;
            m_cuentas << c;
        }
        cs->Cerrar();
        for (int moneda : std::as_const(monedas))
            leerCotizaciones(moneda, tipo.isNull() ? Demo::kTipoCotizacion : tipo.toInt());
    }
    for (int i = 0; i < m_cuentas.size(); ++i)
        if (m_cuentas[i].moneda == 0)
            m_todasLocales << i;
    if (m_todasLocales.size() < kLineasPorAsiento)
        throw ErrorBaseDatos(QStringLiteral("la demostración no tiene cuentas imputables suficientes en la moneda de contabilidad"));

    for (const Modelo &m : kModelos)
        for (const LineaModelo &l : m.lineas) {
            QList<int> locales = grupo(l.grupo, false);
            if (locales.isEmpty())
                locales = grupo(QByteArray(l.grupo).left(1).constData(), false);
            m_locales.insert(l.grupo, locales);
            m_extranjeras.insert(l.grupo, grupo(l.grupo, true));
        }

    auto ls = m_c.Abrir(QStringLiteral("SELECT LibCodigo, LibNombre FROM genLibros WHERE LibDelSistema = 0 ORDER BY LibCodigo"));
    for (; !ls->Fin(); ls->MoverSiguiente())
        m_libros.insert(ls->Texto(QStringLiteral("LibNombre")), int(ls->Entero(QStringLiteral("LibCodigo"))));
    ls->Cerrar();
    auto ps = m_c.Abrir(QStringLiteral("SELECT EmpPrms FROM cceEmpresas WHERE EmpID = ?"), {Demo::kEmpresa});
    if (!ps->Fin()) {
        // The default book is "lib:N" among the company's parameters.
        for (const QString &p : ps->Campo(QStringLiteral("EmpPrms")).toString().split(QLatin1Char('|')))
            if (p.startsWith(QLatin1String("lib:")))
                m_libroPorDefecto = p.mid(4).toInt();
    }
    ps->Cerrar();

    auto pr = m_c.Abrir(QStringLiteral("SELECT ProCodigo FROM cceProyectos ORDER BY ProCodigo"));
    for (; !pr->Fin(); pr->MoverSiguiente())
        m_proyectos << int(pr->Entero(QStringLiteral("ProCodigo")));
    pr->Cerrar();
    auto dp = m_c.Abrir(QStringLiteral("SELECT DepCodigo FROM cceDepartamentos ORDER BY DepCodigo"));
    for (; !dp->Fin(); dp->MoverSiguiente())
        m_departamentos << int(dp->Entero(QStringLiteral("DepCodigo")));
    dp->Cerrar();
}

// The buy price of the currency in the accounting one, quoted directly or the other way
// round (then its inverse), as the program's rate lookup finds it. A currency with neither
// is left out: its accounts take no lines.
void Generador::leerCotizaciones(int moneda, int tipoCotizacion)
{
    QMap<QDate, qint64> tasas;
    const QString sql = QStringLiteral("SELECT CMoFecha, CMoCompra FROM genCotizacionesMoneda WHERE CMoMoneda = ?"
                                       " AND CMoCotizaEn = ? AND CMoTipoCotizacion = ? AND CMoCompra > 0");
    auto rs = m_c.Abrir(sql, {moneda, m_monedaContabilidad, tipoCotizacion});
    for (; !rs->Fin(); rs->MoverSiguiente())
        tasas.insert(rs->Fecha(QStringLiteral("CMoFecha")), qRound64(rs->Numero(QStringLiteral("CMoCompra")) * 10000));
    rs->Cerrar();
    if (tasas.isEmpty()) {
        auto inversa = m_c.Abrir(sql, {m_monedaContabilidad, moneda, tipoCotizacion});
        for (; !inversa->Fin(); inversa->MoverSiguiente())
            tasas.insert(inversa->Fecha(QStringLiteral("CMoFecha")),
                         qRound64(10000.0 / inversa->Numero(QStringLiteral("CMoCompra"))));
        inversa->Cerrar();
    }
    tasas.removeIf([](const auto &par) { return par.value() <= 0; });
    if (!tasas.isEmpty())
        m_tasas.insert(moneda, tasas);
}

// The latest rate on or before the date; the first one for a date before any.
qint64 Generador::tasa(int moneda, const QDate &fecha) const
{
    const QMap<QDate, qint64> &t = m_tasas.find(moneda).value();
    auto it = t.upperBound(fecha);
    if (it != t.cbegin())
        --it;
    return it.value();
}

// The accounts of a group of the chart in the accounting currency, or in a foreign currency
// that has a rate to it.
QList<int> Generador::grupo(const char *prefijo, bool extranjeras) const
{
    const QString p = QString::fromLatin1(prefijo);
    QList<int> r;
    for (int i = 0; i < m_cuentas.size(); ++i) {
        const Cuenta &c = m_cuentas[i];
        const bool enGrupo = c.codigo == p || c.codigo.startsWith(p + QLatin1Char('.'));
        if (enGrupo && (extranjeras ? m_tasas.contains(c.moneda) : c.moneda == 0))
            r << i;
    }
    return r;
}

// An account of the group not used yet in the entry; any other one if the group runs out.
int Generador::elegirCuenta(const char *prefijo, bool extranjera, const QList<int> &usadas)
{
    const auto libre = [&](const QList<int> &lista) {
        QList<int> r;
        for (int i : lista)
            if (!usadas.contains(m_cuentas[i].id))
                r << i;
        return r;
    };
    QList<int> candidatas = libre(extranjera ? m_extranjeras.value(prefijo) : m_locales.value(prefijo));
    if (candidatas.isEmpty())
        candidatas = libre(m_todasLocales);
    return candidatas[m_azar.entre(0, candidatas.size() - 1)];
}

QString Generador::leyenda(const Modelo &m, const QDate &fecha)
{
    QString t = QString::fromUtf8(m.leyenda);
    t.replace(QLatin1String("{n}"), QStringLiteral("%1").arg(m_numero++ % 1000000, 6, 10, QLatin1Char('0')));
    t.replace(QLatin1String("{c}"), QString::fromUtf8(kClientes[m_azar.entre(0, std::size(kClientes) - 1)]));
    t.replace(QLatin1String("{p}"), QString::fromUtf8(kProveedores[m_azar.entre(0, std::size(kProveedores) - 1)]));
    t.replace(QLatin1String("{m}"), QLocale(QLocale::Spanish).monthName(fecha.month()));
    return t;
}

void Generador::armar(const Modelo &m, const QDate &fecha, QList<Linea> &lineas)
{
    qint64 total = m_azar.entre(m.minimo * 100, m.maximo * 100);
    if (m_azar.porCiento(60))
        total -= total % 100;
    // About one entry in ten has one line in a foreign currency, never the last line.
    int extranjera = -1;
    if (m_azar.porCiento(10)) {
        QList<int> posibles;
        for (int i = 0; i < kLineasPorAsiento - 1; ++i)
            if (!m_extranjeras.value(m.lineas[i].grupo).isEmpty())
                posibles << i;
        if (!posibles.isEmpty())
            extranjera = posibles[m_azar.entre(0, posibles.size() - 1)];
    }

    int pesoDebe = 0, pesoHaber = 0;
    for (const LineaModelo &l : m.lineas)
        (l.debe ? pesoDebe : pesoHaber) += l.peso;
    // Each side is split so that it adds up to the total exactly.
    qint64 restoDebe = total, restoHaber = total;
    QList<int> usadas;
    lineas.clear();
    for (int i = 0; i < kLineasPorAsiento; ++i) {
        const LineaModelo &l = m.lineas[i];
        qint64 &resto = l.debe ? restoDebe : restoHaber;
        int &peso = l.debe ? pesoDebe : pesoHaber;
        const qint64 parte = l.peso == peso ? resto : DividirRedondeando(resto * l.peso, peso);
        resto -= parte;
        peso -= l.peso;

        const Cuenta &c = m_cuentas[elegirCuenta(l.grupo, i == extranjera, usadas)];
        usadas << c.id;
        Linea nueva{c.id, l.debe, parte, parte, 0, 0};
        if (c.moneda != 0) {
            // Converted at the day's rate; the accounting amount is the converted one again,
            // so the line's own amount times the rate gives it to the cent.
            const qint64 t = tasa(c.moneda, fecha);
            nueva.importe = DividirRedondeando(parte * 10000, t);
            nueva.importeMC = DividirRedondeando(nueva.importe * t, 10000);
        }
        if (l.grupo[0] == '4' || l.grupo[0] == '5') { // results: some by project and department
            if (!m_proyectos.isEmpty() && m_azar.porCiento(25))
                nueva.proyecto = m_proyectos[m_azar.entre(0, m_proyectos.size() - 1)];
            if (!m_departamentos.isEmpty() && m_azar.porCiento(25))
                nueva.departamento = m_departamentos[m_azar.entre(0, m_departamentos.size() - 1)];
        }
        lineas << nueva;
    }
    // The last line, a credit in the accounting currency, absorbs the conversion's cents.
    qint64 diferencia = 0;
    for (const Linea &l : std::as_const(lineas))
        diferencia += l.debe ? l.importeMC : -l.importeMC;
    Linea &ultima = lineas.last();
    ultima.importe = ultima.importeMC += diferencia;
}

void Generador::Generar()
{
    leerDemo();
    qint64 siguienteAsiento = 1, siguienteLinea = 1;
    {
        auto rs = m_c.Abrir(QStringLiteral("SELECT (SELECT MAX(AsiID) FROM cceAsientos) AS a, (SELECT MAX(ACuID) FROM cceAsientoCuenta) AS l"));
        siguienteAsiento = rs->Campo(QStringLiteral("a")).toLongLong() + 1;
        siguienteLinea = rs->Campo(QStringLiteral("l")).toLongLong() + 1;
        rs->Cerrar();
    }

    int frecuencias = 0;
    for (const Modelo &m : kModelos)
        frecuencias += m.frecuencia;
    const qint64 dias = m_desde.daysTo(m_desde.addYears(2)); // two years, the last day included

    Transaccion tx(m_c);
    QList<QVariantList> cabezales, filas;
    QList<Linea> lineas;
    const auto volcar = [&] {
        InsertarEnBloques(m_c, "cceAsientos", "AsiID, AsiEmpresa, AsiEstado, AsiFechaAsiento, AsiFechaModificado, AsiFechaEstado,"
                                     " AsiLeyenda, AsiTipo, AsiUsuarioVerificador, AsiVerificado, AsiUsuario", cabezales);
        InsertarEnBloques(m_c, "cceAsientoCuenta", "ACuID, ACuIDAsiento, ACuCuenta, ACuProyecto, ACuDepartamento, ACuDebe,"
                                          " AcuHaber, ACuImporteMC, ACuOrden", filas);
        cabezales.clear();
        filas.clear();
    };
    for (int i = 0; i < m_cantidad; ++i) {
        // Evenly over the two years, in date order.
        const QDate fecha = m_desde.addDays(qint64(i) * dias / m_cantidad);
        int r = int(m_azar.entre(0, frecuencias - 1));
        const Modelo &m = *std::find_if(std::begin(kModelos), std::end(kModelos), [&](const Modelo &x) {
            return (r -= x.frecuencia) < 0;
        });
        armar(m, fecha, lineas);
        if (!m_primera.isValid())
            m_primera = fecha;
        m_ultima = fecha;

        const qint64 id = siguienteAsiento++;
        const QTime hora = QTime(8, 0).addMSecs(int(m_azar.entre(0, 12 * 3600 * 1000 - 1)));
        const QVariant momento = Conexion::ValorFechaHora(QDateTime(fecha, hora, Qt::UTC));
        const int estado = m_azar.porCiento(8) ? 0 : 1;
        const int libro = m_azar.porCiento(3) ? 0 : m_libros.value(QString::fromUtf8(m.libro), m_libroPorDefecto);
        const int usuario = m_azar.porCiento(70) ? Demo::kUsuarioAdministrador : Demo::kUsuarioContador;
        QVariant verificador = m_azar.porCiento(50) ? QVariant(0) : QVariant();
        QVariant verificado;
        if (m_azar.porCiento(20)) {
            verificador = Demo::kUsuarioContador;
            if (estado == 1 && m_azar.porCiento(30))
                verificado = 1;
        }
        cabezales.append({id, Demo::kEmpresa, estado, Conexion::ValorFecha(fecha), momento, momento, leyenda(m, fecha),
                          libro ? QVariant(libro) : QVariant(), verificador, verificado, usuario});
        int orden = 0;
        for (const Linea &l : std::as_const(lineas))
            filas.append({siguienteLinea++, id, l.cuenta, l.proyecto, l.departamento,
                          l.debe ? centesimos(l.importe) : kSinNumero, l.debe ? kSinNumero : centesimos(l.importe),
                          centesimos(l.importeMC), ++orden});
        if (cabezales.size() >= kAsientosPorTanda)
            volcar();
    }
    volcar();
    tx.Confirmar();
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    Opciones o;
    const QString error = leerOpciones(QCoreApplication::arguments(), o);
    if (!error.isEmpty()) {
        escribir(stderr, QStringLiteral("generar_base: ") + error);
        escribir(stderr, uso());
        return 2;
    }
    if (QFileInfo::exists(o.ruta)) {
        escribir(stderr, QStringLiteral("generar_base: ya existe %1; no se sobrescribe, indique un archivo nuevo").arg(o.ruta));
        return 1;
    }
    const QString carpeta = QFileInfo(o.ruta).absolutePath();
    if (!QDir().mkpath(carpeta)) {
        escribir(stderr, QStringLiteral("generar_base: no se pudo crear la carpeta %1").arg(carpeta));
        return 1;
    }

    QDate primera, ultima;
    try {
        auto conexion = ConexionQt::Abrir(DireccionBD::Leer(o.ruta), true);
        CrearBaseDemo(*conexion, QDate::currentDate());
        Generador generador(*conexion, o.desde, o.asientos);
        generador.Generar();
        primera = generador.primera();
        ultima = generador.ultima();
        conexion->Ejecutar(QStringLiteral("PRAGMA journal_mode=DELETE"));
        conexion->Cerrar();
    } catch (const ErrorBaseDatos &e) {
        escribir(stderr, QStringLiteral("generar_base: no se pudo generar %1: %2").arg(o.ruta, e.descripcion()));
        for (const char *sufijo : {"", "-wal", "-shm", "-journal"})
            QFile::remove(o.ruta + QLatin1String(sufijo));
        return 1;
    }

    QString linea = QStringLiteral("%1: %2 asientos y %3 líneas agregados a la demostración")
                        .arg(o.ruta)
                        .arg(o.asientos)
                        .arg(qint64(o.asientos) * kLineasPorAsiento);
    if (primera.isValid())
        linea += QStringLiteral(", del %1 al %2").arg(primera.toString(Qt::ISODate), ultima.toString(Qt::ISODate));
    escribir(stdout, linea);
    return 0;
}
