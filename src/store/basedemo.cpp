#include "basedemo.h"
#include "azar.h"

#include "esquema.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QTime>

#include <algorithm>

namespace {

// Chart of accounts. The depth of the code decides: "1" and "1.1" are folders, "1.1.01"
// takes lines; the first digit is the account type. Currency 0 and 1 are both pesos.
// mesesCerrada > 0 closes the account at the end of the month that many months before
// the reference date. saldo is the opening balance in the account's currency, positive
// for the type's usual side; "Resultados acumulados" takes the difference so they add up.
struct CuentaDemo
{
    const char *codigo, *nombre;
    int moneda = 0, mesesCerrada = 0;
    double saldo = 0;
};

const CuentaDemo kCuentas[] = {
    {"1", "Activo"}, {"1.1", "Disponible"}, {"1.1.01", "Caja", 0, 0, 25000}, {"1.1.02", "Caja chica", 1, 0, 5000},
    {"1.1.03", "Banco República $", 1, 0, 480000}, {"1.1.04", "Banco Itaú U$S", 2, 0, 12500},
    {"1.1.05", "Banco Santander €", 3, 0, 3000}, {"1.1.06", "Caja en reales R$", 4, 0, 1500},
    {"1.1.07", "Banco Comercial (cerrado)", 1, 16}, {"1.1.08", "Banco BBVA U$S", 2, 0, 6000}, {"1.2", "Créditos"},
    {"1.2.01", "Deudores por ventas", 0, 0, 310000}, {"1.2.02", "Deudores en U$S", 2, 0, 4200},
    {"1.2.03", "Documentos a cobrar", 1, 0, 85000}, {"1.2.04", "Anticipos a proveedores", 0},
    {"1.2.05", "IVA compras", 0, 0, 38000}, {"1.2.06", "Deudores varios", 1}, {"1.2.07", "Deudores en R$", 4, 0, 9000},
    {"1.3", "Bienes de cambio"},
    {"1.3.01", "Mercadería de reventa", 0, 0, 1250000}, {"1.3.02", "Mercadería en tránsito", 1},
    {"1.4", "Bienes de uso"}, {"1.4.01", "Muebles y útiles", 1, 0, 180000}, {"1.4.02", "Vehículos", 1, 0, 650000},
    {"1.4.03", "Equipos de computación", 1, 0, 120000}, {"1.4.04", "Amortizaciones acumuladas", 1, 0, -310000},
    {"2", "Pasivo"}, {"2.1", "Deudas comerciales"}, {"2.1.01", "Proveedores", 0, 0, 420000},
    {"2.1.02", "Proveedores del exterior U$S", 2, 0, 4800}, {"2.1.03", "Documentos a pagar", 1, 0, 60000},
    {"2.1.04", "Proveedores del exterior €", 3, 0, 2600},
    {"2.2", "Deudas financieras"}, {"2.2.01", "Préstamo bancario U$S", 2, 0, 20000},
    {"2.2.02", "Préstamo Banco Comercial (cerrado)", 1, 16}, {"2.2.03", "Tarjeta de crédito corporativa", 1},
    {"2.3", "Deudas diversas"}, {"2.3.01", "Sueldos a pagar", 0, 0, 185000},
    {"2.3.02", "Aportes a pagar", 0, 0, 98000}, {"2.3.03", "FONASA a pagar", 0, 0, 21000},
    {"2.3.04", "IRPF retenciones a pagar", 0, 0, 14000}, {"2.3.05", "IVA a pagar", 0, 0, 76000},
    {"2.3.06", "IRAE a pagar", 0, 0, 45000}, {"2.3.07", "Acreedores varios", 1},
    {"3", "Patrimonio"}, {"3.1", "Capital"}, {"3.1.01", "Capital integrado", 0, 0, 1500000}, {"3.2", "Reservas"},
    {"3.2.01", "Reserva legal", 0, 0, 150000}, {"3.3", "Resultados"}, {"3.3.01", "Resultados acumulados", 0},
    {"3.3.02", "Resultado del ejercicio", 0},
    {"4", "Ingresos"}, {"4.1", "Ingresos operativos"}, {"4.1.01", "Ventas de mercadería", 0},
    {"4.1.02", "Servicios", 1}, {"4.1.03", "Comisiones ganadas (cerrado)", 1, 14}, {"4.2", "Ingresos financieros"},
    {"4.2.01", "Descuentos obtenidos", 0}, {"4.2.02", "Diferencias de cambio ganadas", 0},
    {"4.2.03", "Intereses ganados", 1},
    {"5", "Egresos"}, {"5.1", "Costo de ventas"}, {"5.1.01", "Costo de mercadería vendida", 0},
    {"5.2", "Gastos de personal"}, {"5.2.01", "Sueldos", 0}, {"5.2.02", "Cargas sociales", 0},
    {"5.3", "Gastos de administración y ventas"}, {"5.3.01", "Alquileres", 1}, {"5.3.02", "UTE", 1},
    {"5.3.03", "ANTEL", 1}, {"5.3.04", "OSE", 1}, {"5.3.05", "Combustibles", 0},
    {"5.3.06", "Honorarios profesionales", 0}, {"5.3.07", "Papelería y útiles", 1}, {"5.3.08", "Publicidad", 0},
    {"5.3.09", "Publicidad radial (cerrado)", 0, 18}, {"5.3.10", "Seguros", 1},
    {"5.3.11", "Mantenimiento y reparaciones", 0}, {"5.3.12", "Fletes", 0},
    {"5.3.13", "Software y suscripciones", 1}, {"5.3.14", "Amortizaciones", 0}, {"5.3.15", "Gastos varios", 0},
    {"5.4", "Gastos financieros"}, {"5.4.01", "Gastos bancarios", 1}, {"5.4.02", "Intereses perdidos", 1},
    {"5.4.03", "Diferencias de cambio perdidas", 0}, {"5.4.04", "Descuentos concedidos", 0}, {"5.5", "Impuestos"},
    {"5.5.01", "IRAE", 0}, {"5.5.02", "Impuesto al patrimonio", 0}, {"5.5.03", "Tasas y contribuciones", 1},
};

constexpr const char *kResultadosAcumulados = "3.3.01";

// Kinds of entries. Each side of the entry is split among its lines by weight. dia 0:
// drawn at random (frecuencia is the weight); 1 to 31: once a month on that day (31 = the
// last weekday); below 0: once, that many days before the closing date of the closed
// account it uses. Amounts in pesos.
// An entry balances in pesos and also in its other currency, if it has one (never more
// than one). So lines in another currency come in pairs of the same currency and weight,
// one on each side, and both get the same amount in that currency. They are converted at
// the day's rate, or at the rate of diasCotizacion days before for a credit or a debt
// booked back then; a pair valued at two rates gets a line for the exchange difference.
// Tokens in the legend: {f} invoice, {r} receipt, {n} a document number, {c} customer,
// {x} foreign customer, {p} supplier, {e} foreign supplier, {m} month, {mp} last month.
struct LineaModelo
{
    const char *cuenta = nullptr;
    bool debe = true;
    int peso = 0, proyecto = 0, departamento = 0, diasCotizacion = 0;
};

struct ModeloAsiento
{
    const char *leyenda;
    int libro, frecuencia, dia, minimo, maximo;
    LineaModelo lineas[4];
};

constexpr bool D = true;
constexpr bool H = false;

const ModeloAsiento kModelos[] = {
    {"Venta contado factura A-{f}", 3, 12, 0, 2500, 45000, {{"1.1.01", D, 122}, {"4.1.01", H, 100, 2, 2}, {"2.3.05", H, 22}}},
    {"Venta crédito factura A-{f} - {c}", 3, 9, 0, 8000, 140000, {{"1.2.01", D, 122}, {"4.1.01", H, 100, 0, 2}, {"2.3.05", H, 22}}},
    {"Venta web e-Ticket {f}", 3, 4, 0, 1500, 18000, {{"1.1.03", D, 122}, {"4.1.01", H, 100, 3, 2}, {"2.3.05", H, 22}}},
    {"Servicio de instalación factura A-{f}", 3, 3, 0, 6000, 60000, {{"1.1.01", D, 122}, {"4.1.02", H, 100, 1}, {"2.3.05", H, 22}}},
    {"Venta con descuento factura A-{f} - {c}", 3, 2, 0, 10000, 80000,
     {{"1.2.01", D, 115}, {"5.4.04", D, 7, 0, 2}, {"4.1.01", H, 100, 2, 2}, {"2.3.05", H, 22}}},
    {"Cobro a cliente {c}", 4, 8, 0, 5000, 120000, {{"1.1.03", D, 100}, {"1.2.01", H, 100}}},
    {"Cobro en efectivo recibo {r} - {c}", 4, 4, 0, 2000, 40000, {{"1.1.01", D, 100}, {"1.2.01", H, 100}}},
    {"Cobro a {x} en dólares", 4, 20, 0, 40000, 200000, {{"1.1.04", D, 100}, {"1.2.02", H, 100, 0, 0, 45}}},
    {"Compra de mercadería a {p}", 2, 9, 0, 10000, 180000, {{"1.3.01", D, 100, 0, 3}, {"1.2.05", D, 22}, {"2.1.01", H, 122}}},
    {"Compra contado a {p}", 2, 3, 0, 2000, 30000, {{"1.3.01", D, 100}, {"1.2.05", D, 22}, {"1.1.01", H, 122}}},
    {"Pago a {p}", 4, 7, 0, 10000, 150000, {{"2.1.01", D, 100}, {"1.1.03", H, 100}}},
    {"Transferencia a {e}", 4, 18, 0, 60000, 300000, {{"2.1.02", D, 100, 0, 0, 60}, {"1.1.04", H, 100}}},
    {"Transferencia entre cuentas en dólares", 4, 12, 0, 20000, 160000, {{"1.1.08", D, 100}, {"1.1.04", H, 100}}},
    {"Pago a Suministros Bilbao S.L. en euros", 4, 12, 0, 20000, 110000, {{"2.1.04", D, 100, 0, 0, 30}, {"1.1.05", H, 100}}},
    {"Cobro en reales a Ferragens Gaúcha Ltda.", 4, 8, 0, 5000, 40000, {{"1.1.06", D, 100}, {"1.2.07", H, 100, 0, 0, 20}}},
    {"Depósito en Banco República", 4, 7, 0, 10000, 90000, {{"1.1.03", D, 100}, {"1.1.01", H, 100}}},
    {"Reposición de caja chica", 4, 3, 0, 3000, 8000, {{"1.1.02", D, 100}, {"1.1.01", H, 100}}},
    {"Gastos de caja chica", 1, 3, 0, 1500, 7000,
     {{"5.3.07", D, 40, 0, 1}, {"5.3.15", D, 35}, {"5.3.05", D, 25, 0, 3}, {"1.1.02", H, 100}}},
    {"Compra de combustible", 2, 3, 0, 2500, 9000, {{"5.3.05", D, 100, 0, 3}, {"1.2.05", D, 22}, {"1.1.01", H, 122}}},
    {"Gastos bancarios Banco República", 4, 3, 0, 300, 2500, {{"5.4.01", D, 100, 0, 1}, {"1.1.03", H, 100}}},
    {"Honorarios escribanía factura {n}", 1, 2, 0, 8000, 35000, {{"5.3.06", D, 100, 0, 1}, {"1.2.05", D, 22}, {"1.1.03", H, 122}}},
    {"Publicidad en redes sociales", 1, 2, 0, 3000, 20000, {{"5.3.08", D, 100, 3, 2}, {"1.2.05", D, 22}, {"1.1.03", H, 122}}},
    {"Mantenimiento de vehículo de reparto", 1, 2, 0, 3000, 25000, {{"5.3.11", D, 100, 0, 3}, {"1.2.05", D, 22}, {"1.1.01", H, 122}}},
    {"Flete de mercadería de {p}", 2, 2, 0, 1500, 12000, {{"5.3.12", D, 100, 0, 3}, {"1.2.05", D, 22}, {"1.1.01", H, 122}}},
    {"Descuento obtenido de {p}", 1, 1, 0, 500, 8000, {{"2.1.01", D, 100}, {"4.2.01", H, 100}}},
    {"Intereses plazo fijo Banco República", 4, 1, 0, 1500, 9000, {{"1.1.03", D, 100}, {"4.2.03", H, 100}}},
    {"Documento recibido de {c}", 1, 2, 0, 10000, 90000, {{"1.2.03", D, 100}, {"1.2.01", H, 100}}},
    {"Cobro de documento {n}", 4, 2, 0, 10000, 90000, {{"1.1.03", D, 100}, {"1.2.03", H, 100}}},
    {"Anticipo a {p}", 4, 1, 0, 10000, 60000, {{"1.2.04", D, 100}, {"1.1.03", H, 100}}},
    {"Pago seguro de vehículos cuota {n}", 4, 1, 0, 4000, 12000, {{"5.3.10", D, 100, 0, 3}, {"1.1.03", H, 100}}},
    {"Depósito en Banco Comercial", 4, 6, 0, 10000, 80000, {{"1.1.07", D, 100}, {"1.1.01", H, 100}}},
    {"Pago a {p} - Banco Comercial", 4, 6, 0, 10000, 90000, {{"2.1.01", D, 100}, {"1.1.07", H, 100}}},
    {"Comisión por ventas por cuenta de terceros", 3, 8, 0, 2000, 15000, {{"1.1.01", D, 122}, {"4.1.03", H, 100}, {"2.3.05", H, 22}}},
    {"Aviso en radio local", 1, 12, 0, 3000, 12000, {{"5.3.09", D, 100, 2, 2}, {"1.2.05", D, 22}, {"1.1.03", H, 122}}},

    {"Alquiler local comercial {m}", 4, 0, 3, 68500, 68500, {{"5.3.01", D, 100, 2, 1}, {"1.1.03", H, 100}}},
    {"Pago UTE {mp}", 4, 0, 9, 7000, 12500, {{"5.3.02", D, 100, 0, 1}, {"1.2.05", D, 22}, {"1.1.03", H, 122}}},
    {"Pago ANTEL y OSE {mp}", 4, 0, 12, 5000, 9000, {{"5.3.03", D, 70, 0, 1}, {"5.3.04", D, 30, 0, 1}, {"1.2.05", D, 22}, {"1.1.03", H, 122}}},
    {"Pago DGI IVA e IRAE {mp}", 4, 0, 20, 60000, 140000, {{"2.3.05", D, 80}, {"2.3.06", D, 20}, {"1.1.03", H, 100}}},
    {"Cuota {m} préstamo bancario U$S", 4, 0, 25, 40000, 46000,
     {{"2.2.01", D, 85}, {"5.4.02", D, 15}, {"1.1.04", H, 85}, {"1.1.03", H, 15}}}, // interest paid in pesos
    {"Costo de mercadería vendida {m}", 1, 0, 31, 260000, 480000, {{"5.1.01", D, 100}, {"1.3.01", H, 100}}},
    {"Amortización de bienes de uso {m}", 1, 0, 31, 15666, 15666,
     {{"5.3.14", D, 10, 0, 1}, {"5.3.14", D, 69, 0, 3}, {"5.3.14", D, 21, 0, 2}, {"1.4.04", H, 100}}},
    {"Cuota {m} préstamo Banco Comercial", 4, 0, 22, 25000, 25000, {{"2.2.02", D, 88}, {"5.4.02", D, 12}, {"1.1.07", H, 100}}},
    {"Cancelación préstamo Banco Comercial", 4, 0, -6, 120000, 120000, {{"2.2.02", D, 100}, {"1.1.07", H, 100}}},
    {"Cierre de cuenta Banco Comercial", 4, 0, -3, 80000, 150000, {{"1.1.03", D, 100}, {"1.1.07", H, 100}}},
};

// A line in another currency against pesos only: the entry balances in pesos, where an
// entry that mixes currencies is balanced.
const ModeloAsiento kModelosMixtos[] = {
    {"Exportación a {x} factura E-{f}", 3, 0, 0, 40000, 220000, {{"1.2.02", D, 100}, {"4.1.01", H, 100, 0, 2}}},
    {"Importación de mercadería - {e}", 2, 0, 0, 80000, 400000, {{"1.3.01", D, 100, 0, 3}, {"2.1.02", H, 100}}},
    {"Compra de dólares", 4, 0, 0, 40000, 200000, {{"1.1.04", D, 100}, {"1.1.03", H, 100}}},
    {"Comisiones Banco Itaú", 4, 0, 0, 400, 2000, {{"5.4.01", D, 100, 0, 1}, {"1.1.04", H, 100}}},
    {"Pago de licencias de software en euros", 1, 0, 0, 4000, 25000, {{"5.3.13", D, 100, 3, 1}, {"1.1.05", H, 100}}},
    {"Cambio de reales a pesos", 4, 0, 0, 5000, 30000, {{"1.1.01", D, 100}, {"1.1.06", H, 100}}},
};

const char *const kClientes[] = {
    "Constructora del Este S.A.", "Barraca Oriental", "Juan Pérez", "Estudio Arq. Martínez",
    "Inmobiliaria Pocitos", "Cooperativa de Vivienda Malvín", "María Rodríguez", "Talleres Sosa Hnos.",
    "Colegio San Javier", "Hotel del Prado",
};
const char *const kClientesExterior[] = {
    "Ferragens Gaúcha Ltda. (Brasil)", "Corralón Entre Ríos S.R.L. (Argentina)", "Materiales Asunción S.A. (Paraguay)",
};
const char *const kProveedores[] = {
    "Distribuidora Sur S.A.", "Herramientas del Plata", "Pinturas Arazatí", "Sanitarios Modernos",
    "Bulonera Uruguaya", "Eléctrica Central", "Maderas Paysandú",
};
const char *const kProveedoresExterior[] = {
    "Tools Import Corp. (Miami)", "Ferramentas Serra Ltda. (Brasil)", "Ningbo Hardware Co. (China)",
};
const char *const kMeses[] = {
    "enero", "febrero", "marzo", "abril", "mayo", "junio",
    "julio", "agosto", "septiembre", "octubre", "noviembre", "diciembre",
};

constexpr int kDiasCotizacion = 730;
constexpr int kCantidadAsientos = 400;
constexpr int kTipoCotizacionAlternativa = 2;


QVariant texto(const char *t) { return QString::fromUtf8(t); }
QVariant centesimos(qint64 v) { return double(v) / 100.0; }
QVariant diezmilesimos(qint64 v) { return double(v) / 10000.0; }
const QVariant kSinNumero{QMetaType(QMetaType::Double)};
const QVariant kSinTexto{QMetaType(QMetaType::QString)};

bool esFinDeSemana(const QDate &d) { return d.dayOfWeek() > 5; }

// The day of the month, moved to a weekday: forwards, or backwards for the month's end.
QDate diaHabil(const QDate &mes, int dia)
{
    QDate d(mes.year(), mes.month(), std::min(dia, mes.daysInMonth()));
    while (esFinDeSemana(d))
        d = d.addDays(dia >= 28 ? -1 : 1);
    return d;
}


struct CuentaInfo
{
    int id = 0;
    int moneda = Demo::kMonedaPesos; // 0 already turned into pesos
    int tipo = 0;
    QDate cierre;
};

// Amounts in cents of the account's currency and of pesos; the rate in ten-thousandths.
struct Linea
{
    int cuenta, moneda;
    bool debe;
    qint64 importe, importeMC, tasa;
    int proyecto, departamento;
};

struct AsientoDemo
{
    QDate fecha;
    const char *leyenda;
    int libro;
    quint64 sorteo; // picks the customer, supplier and document number of the legend
    QList<Linea> lineas;
    int estado = 1;
};

// One month's payroll, so the payments of the next month match it.
struct Liquidacion
{
    qint64 bruto[3], cargas[3];
    qint64 bps, fonasa, irpf, liquido, totalCargas;
};

class GeneradorDemo
{
public:
    GeneradorDemo(Conexion &conexion, const QDate &hoy)
        : m_conexion(conexion), m_hoy(hoy), m_inicio(hoy.addDays(-(kDiasCotizacion - 1)))
    {
    }

    void Generar();

private:
    void cotizaciones();
    void insertarConfiguracion();
    void insertarCotizaciones();
    void insertarCuentas();
    void insertarComprobantes();
    void armarAsientos();
    void asignarEstados();
    void insertarAsientos();

    qint64 tasaDe(int moneda, const QDate &fecha) const;
    const CuentaInfo &cuenta(const char *codigo) const
    {
        Q_ASSERT(m_cuentas.contains(QByteArray(codigo)));
        return m_cuentas.find(QByteArray(codigo)).value();
    }
    bool abiertas(const ModeloAsiento &m, const QDate &fecha) const;
    bool enVentana(const QDate &f) const { return f >= m_inicio.addDays(3) && f <= m_hoy; }
    void agregarModelo(const ModeloAsiento &m, const QDate &fecha);
    void agregarAlAzar(const QDate &fecha);
    Linea linea(const char *codigo, bool debe, qint64 pesos, const QDate &fecha, int proyecto = 0, int departamento = 0) const;
    Liquidacion liquidar(int indiceMes);
    void sueldos(const QDate &mes, const Liquidacion &anterior, const Liquidacion &actual);
    QString leyendaDe(const AsientoDemo &a);

    Conexion &m_conexion;
    QDate m_hoy;
    QDate m_inicio;
    Azar m_azar{0x5EED2026A51E0701ull};
    QHash<QByteArray, CuentaInfo> m_cuentas;
    // Buy prices per day from m_inicio, ten-thousandths; 0 on weekends.
    QList<qint64> m_dolar, m_euroEnDolares, m_pesoEnDolares, m_pesoEnReales;
    QList<AsientoDemo> m_asientos;
    int m_factura = 1201;
    int m_recibo = 340;
};

void GeneradorDemo::Generar()
{
    cotizaciones();
    Transaccion tx(m_conexion);
    insertarConfiguracion();
    insertarCotizaciones();
    insertarCuentas();
    insertarComprobantes();
    armarAsientos();
    asignarEstados();
    insertarAsientos();
    if (m_conexion.motor() == Motor::PostgreSQL) {
        // The ids were given explicitly; move each identity past them.
        const char *const secuencias[][2] = {
            {"cceAsientos", "AsiID"}, {"cceAsientoCuenta", "ACuID"}, {"genCotizacionesMoneda", "CMoID"}, {"cceComprobantes", "ComID"},
        };
        for (const auto &[tabla, columna] : secuencias)
            m_conexion.Ejecutar(QStringLiteral("SELECT setval(pg_get_serial_sequence('%1','%2'), (SELECT MAX(%3) FROM %4))")
                                    .arg(QString::fromLatin1(tabla).toLower(), QString::fromLatin1(columna).toLower(),
                                         QLatin1String(columna), QLatin1String(tabla)));
    }
    tx.Confirmar();
}

// A slow random walk, pulled gently back towards the middle of its range.
qint64 paso(Azar &azar, qint64 valor, qint64 amplitud, qint64 centro, qint64 minimo, qint64 maximo)
{
    valor += azar.entre(-amplitud, amplitud) + (centro - valor) / 200;
    return std::clamp(valor, minimo, maximo);
}

void GeneradorDemo::cotizaciones()
{
    qint64 dolar = 415000, euro = 10850, real = 1300;
    for (int i = 0; i < kDiasCotizacion; ++i) {
        const bool habil = !esFinDeSemana(m_inicio.addDays(i));
        if (habil) {
            dolar = paso(m_azar, dolar, 2000, 415000, 392000, 438000);
            euro = paso(m_azar, euro, 45, 10850, 10520, 11180);
            real = paso(m_azar, real, 8, 1300, 1210, 1390);
        }
        m_dolar << (habil ? dolar : 0);
        m_euroEnDolares << (habil ? euro : 0);
        m_pesoEnDolares << (habil ? DividirRedondeando(100000000, dolar) : 0);
        m_pesoEnReales << (habil ? real : 0);
    }
}

qint64 GeneradorDemo::tasaDe(int moneda, const QDate &fecha) const
{
    if (moneda == Demo::kMonedaPesos)
        return 10000;
    // The latest quotation on or before the date, as the rate lookup finds it.
    int i = int(std::clamp<qint64>(m_inicio.daysTo(fecha), 0, kDiasCotizacion - 1));
    while (i > 0 && m_dolar[i] == 0)
        --i;
    while (m_dolar[i] == 0)
        ++i;
    switch (moneda) {
    case Demo::kMonedaDolares:
        return m_dolar[i];
    case Demo::kMonedaEuros: // cross rate through dollars, cut to three decimals
        return DividirRedondeando(m_euroEnDolares[i] * 1000, m_pesoEnDolares[i]) * 10;
    case Demo::kMonedaReales: // only pesos in reales is quoted: the inverse, four decimals
        return DividirRedondeando(100000000, m_pesoEnReales[i]);
    default:
        return 10000;
    }
}

// What every company needs before its first entry: the system parameters and books, the
// company itself, the currencies, the account types and an administrator who may do
// everything and authorise.
void insertarBasicos(Conexion &c, const QDate &hoy, const char *empresa)
{
    InsertarEnBloques(c, "genParametros", "ParNombre, ParValor, ParTexto", {
        {texto("defBDDateCharSQLs"), kSinNumero, texto("'")}, {texto("defBDDateFormat"), kSinNumero, texto("yyyy-mm-dd")},
        {texto("sis_Multiusuario"), 1, kSinTexto}, {texto("sis_LibroAsientoResumen"), Demo::kLibroResumen, kSinTexto},
        {texto("sis_LibroAsientoApertura"), Demo::kLibroApertura, kSinTexto},
        {texto("sis_LibroAsientoCierre"), Demo::kLibroCierre, kSinTexto}, {texto("sis_LibroADC"), Demo::kLibroADC, kSinTexto},
        {texto("sis_LibroAsientoPrimeraApertura"), Demo::kLibroPrimeraApertura, kSinTexto},
    });
    InsertarEnBloques(c, "genLibros", "LibCodigo, LibNombre, LibDelSistema", {
        {Demo::kLibroDiario, texto("Diario"), 0}, {Demo::kLibroResumen, texto("Resumen"), 1},
        {Demo::kLibroApertura, texto("Apertura"), 1}, {Demo::kLibroCierre, texto("Cierre"), 1},
        {Demo::kLibroADC, texto("Diferencias de cambio"), 1}, {Demo::kLibroPrimeraApertura, texto("Primera apertura"), 1},
    });
    InsertarEnBloques(c, "cceEmpresas", "EmpID, EmpNombre, EmpMostrarCodigoCta, EmpMonedaContabilidad, EmpValoresUsuarioYAuroriza,"
                               " EmpTipoTCComprobantes, EmpFCierreEjercicio, EmpClase, EmpPrms, EmpFechaCotizacion", {
        {Demo::kEmpresa, texto(empresa), 1, Demo::kMonedaPesos, texto("01"), Demo::kTipoCotizacion,
         Conexion::ValorFecha(QDate(hoy.year() - 1, 12, 31)), 1, texto("cfg:1|lib:1"), 1},
    });
    // Euros without masks take the defaults; the indexed unit is no trading currency.
    InsertarEnBloques(c, "genMonedas", "MonID, MonSimbolo, MonNombre, MonCotizaEn, MonRedondeo, MonFormatoCotizacion, MonTipo", {
        {Demo::kMonedaPesos, texto("$"), texto("Pesos"), Demo::kMonedaDolares, texto("#,##0.00"), texto("#,##0.000"), 1},
        {Demo::kMonedaDolares, texto("U$S"), texto("Dólares"), Demo::kMonedaPesos, texto("#,##0.00"), texto("#,##0.0000"), 1},
        {Demo::kMonedaEuros, texto("€"), texto("Euros"), Demo::kMonedaDolares, kSinTexto, kSinTexto, 1},
        {Demo::kMonedaReales, texto("R$"), texto("Reales"), Demo::kMonedaPesos, texto("#,##0.00"), texto("#,##0.000"), 1},
        {5, texto("UI"), texto("Unidades indexadas"), Demo::kMonedaPesos, texto("#,##0.00"), texto("#,##0.0000"), 2},
    });
    InsertarEnBloques(c, "sisTipoCuenta", "TCuID, TCuNombre, TCuSigno, TCuClaseEmpresa", {
        {1, texto("Activo"), 1, 1}, {2, texto("Pasivo"), -1, 1}, {3, texto("Patrimonio"), -1, 1},
        {4, texto("Ingresos"), -1, 1}, {5, texto("Egresos"), 1, 1},
    });
    InsertarEnBloques(c, "segUsuarios", "UsuID, UsuNombre", {{Demo::kUsuarioAdministrador, texto("Administrador")}});
    InsertarEnBloques(c, "segPermisos", "PerUsuario, PerEmpresa, PerModulo, PerLetras, PerAutoriza", {
        {Demo::kUsuarioAdministrador, Demo::kEmpresa, texto(Demo::kModulo), texto("AMEQ"), 1},
    });
}

void GeneradorDemo::insertarConfiguracion()
{
    Conexion &c = m_conexion;
    insertarBasicos(c, m_hoy, "Ferretería El Tornillo S.R.L.");
    InsertarEnBloques(c, "genLibros", "LibCodigo, LibNombre, LibDelSistema", {
        {2, texto("Compras"), 0}, {3, texto("Ventas"), 0}, {4, texto("Caja y Bancos"), 0}, {5, texto("Sueldos"), 0},
    });
    InsertarEnBloques(c, "cceProyectos", "ProCodigo, ProAbreviacion, ProNombre", {
        {1, texto("OBRA1"), texto("Obra edificio Rambla")}, {2, texto("TIENDA"), texto("Local de venta")},
        {3, texto("WEB"), texto("Tienda en línea")},
    });
    InsertarEnBloques(c, "cceDepartamentos", "DepCodigo, DepAbreviacion, DepNombre", {
        {1, texto("ADM"), texto("Administración")}, {2, texto("VTA"), texto("Ventas")}, {3, texto("DEP"), texto("Depósito")},
    });
    InsertarEnBloques(c, "segUsuarios", "UsuID, UsuNombre", {
        {Demo::kUsuarioConsulta, texto("Consulta")}, {Demo::kUsuarioSinPermisos, texto("Invitado")},
        {Demo::kUsuarioContador, texto("Contadora")},
    });
    const QVariant modulo = texto(Demo::kModulo);
    InsertarEnBloques(c, "segPermisos", "PerUsuario, PerEmpresa, PerModulo, PerLetras, PerAutoriza", {
        {Demo::kUsuarioConsulta, Demo::kEmpresa, modulo, texto("Q"), 0},
        {Demo::kUsuarioSinPermisos, Demo::kEmpresa, modulo, texto(""), 0},
        {Demo::kUsuarioContador, Demo::kEmpresa, modulo, texto("amqe"), 1},
    });
}

// Dollars in pesos is the direct pair; euros and pesos are both quoted in dollars, so euros
// reach pesos only by the cross rate; pesos in reales leaves reales an inverse quotation.
void GeneradorDemo::insertarCotizaciones()
{
    QList<QVariantList> filas;
    const auto agregar = [&](const QVariant &fecha, int moneda, int cotizaEn, int tipo, qint64 compra, qint64 venta) {
        filas.append({filas.size() + 1, fecha, moneda, cotizaEn, tipo, diezmilesimos(compra), diezmilesimos(venta)});
    };
    int alternativas = 0;
    for (int i = 0; i < kDiasCotizacion; ++i) {
        if (m_dolar[i] == 0)
            continue;
        const QVariant fecha = Conexion::ValorFecha(m_inicio.addDays(i));
        agregar(fecha, Demo::kMonedaDolares, Demo::kMonedaPesos, Demo::kTipoCotizacion, m_dolar[i],
                m_dolar[i] + m_azar.entre(2500, 6000));
        agregar(fecha, Demo::kMonedaEuros, Demo::kMonedaDolares, Demo::kTipoCotizacion, m_euroEnDolares[i],
                m_euroEnDolares[i] + m_azar.entre(40, 120));
        agregar(fecha, Demo::kMonedaPesos, Demo::kMonedaDolares, Demo::kTipoCotizacion, m_pesoEnDolares[i],
                m_pesoEnDolares[i] + 1);
        agregar(fecha, Demo::kMonedaPesos, Demo::kMonedaReales, Demo::kTipoCotizacion, m_pesoEnReales[i],
                m_pesoEnReales[i] + m_azar.entre(15, 40));
        // Another quotation type about every five weeks, ten per cent dearer.
        if (i >= 15 + 36 * alternativas && alternativas < 20) {
            ++alternativas;
            const qint64 otra = DividirRedondeando(m_dolar[i] * 110, 100);
            agregar(fecha, Demo::kMonedaDolares, Demo::kMonedaPesos, kTipoCotizacionAlternativa, otra, otra + 5000);
        }
    }
    InsertarEnBloques(m_conexion, "genCotizacionesMoneda",
             "CMoID, CMoFecha, CMoMoneda, CMoCotizaEn, CMoTipoCotizacion, CMoCompra, CMoVenta", filas);
}

void GeneradorDemo::insertarCuentas()
{
    int id = 0;
    for (const CuentaDemo &d : kCuentas) {
        CuentaInfo info{++id, d.moneda == 0 ? Demo::kMonedaPesos : d.moneda, d.codigo[0] - '0', {}};
        if (d.mesesCerrada > 0) {
            const QDate m = m_hoy.addMonths(-d.mesesCerrada);
            info.cierre = QDate(m.year(), m.month(), m.daysInMonth());
        }
        m_cuentas.insert(QByteArray(d.codigo), info);
    }

    // Opening balances; foreign ones valued at the first quotation.
    QHash<QByteArray, std::pair<qint64, qint64>> saldos;
    qint64 diferencia = 0;
    for (const CuentaDemo &d : kCuentas) {
        if (d.saldo == 0)
            continue;
        const CuentaInfo &info = cuenta(d.codigo);
        const qint64 saldo = qRound64(d.saldo * 100);
        const qint64 saldoMC = DividirRedondeando(saldo * tasaDe(info.moneda, m_inicio), 10000);
        saldos.insert(QByteArray(d.codigo), {saldo, saldoMC});
        diferencia += (info.tipo == 1 || info.tipo == 5) ? saldoMC : -saldoMC;
    }
    saldos.insert(QByteArray(kResultadosAcumulados), {diferencia, diferencia});

    QList<QVariantList> filas;
    for (const CuentaDemo &d : kCuentas) {
        const CuentaInfo &info = cuenta(d.codigo);
        const bool carpeta = QByteArray(d.codigo).count('.') < 2;
        const auto saldo = saldos.value(QByteArray(d.codigo), {0, 0});
        filas.append({info.id, Demo::kEmpresa, texto(d.codigo), texto(d.nombre), d.moneda, Conexion::ValorFecha(info.cierre),
                      carpeta ? 1 : 0, info.tipo, carpeta ? kSinNumero : centesimos(saldo.first),
                      carpeta ? kSinNumero : centesimos(saldo.second)});
    }
    InsertarEnBloques(m_conexion, "cceCuentas", "CueID, CueIDEmpresa, CueCodigo, CueNombre, CueMoneda, CueFechaCerrada,"
                                       " CueEsCarpeta, CueTipo, CueSaldo, CueSaldoMConta", filas);
}

void GeneradorDemo::insertarComprobantes()
{
    const char *const tipos[] = {"Factura contado", "Factura crédito", "Recibo", "Nota de crédito", "Remito"};
    QList<QDate> fechas;
    for (int i = 0; i < 30; ++i)
        fechas << m_inicio.addDays(m_azar.entre(5, kDiasCotizacion - 1));
    std::sort(fechas.begin(), fechas.end());
    QList<QVariantList> filas;
    for (int i = 0; i < fechas.size(); ++i) {
        const int r = int(m_azar.entre(0, 9));
        filas.append({i + 1, Demo::kEmpresa, Conexion::ValorFecha(fechas[i]),
                      r < 2 ? QVariant(9) : r < 4 ? QVariant(QMetaType(QMetaType::Int)) : QVariant(1),
                      QStringLiteral("A-%1").arg(5100 + i * 7, 6, 10, QLatin1Char('0')), texto(tipos[m_azar.entre(0, 4)])});
    }
    InsertarEnBloques(m_conexion, "cceComprobantes", "ComID, ComIDEmpresa, ComFecha, ComEstado, ComNumero, ComDescripcion", filas);
}

Linea GeneradorDemo::linea(const char *codigo, bool debe, qint64 pesos, const QDate &fecha, int proyecto,
                           int departamento) const
{
    const CuentaInfo &c = cuenta(codigo);
    Linea l{c.id, c.moneda, debe, pesos, pesos, 10000, proyecto, departamento};
    if (c.moneda != Demo::kMonedaPesos) {
        l.tasa = tasaDe(c.moneda, fecha);
        l.importe = DividirRedondeando(pesos * 10000, l.tasa);
        l.importeMC = DividirRedondeando(l.importe * l.tasa, 10000);
    }
    return l;
}

// An account closed at a date is only used by entries dated before it.
bool GeneradorDemo::abiertas(const ModeloAsiento &m, const QDate &fecha) const
{
    return std::none_of(std::begin(m.lineas), std::end(m.lineas), [&](const LineaModelo &l) {
        return l.cuenta && cuenta(l.cuenta).cierre.isValid() && fecha >= cuenta(l.cuenta).cierre;
    });
}

void GeneradorDemo::agregarModelo(const ModeloAsiento &m, const QDate &fecha)
{
    qint64 total = m_azar.entre(qint64(m.minimo) * 100, qint64(m.maximo) * 100);
    if (m_azar.porCiento(60))
        total -= total % 100;

    AsientoDemo a{fecha, m.leyenda, m.libro, m_azar.siguiente(), {}};
    int pesoDebe = 0, pesoHaber = 0;
    for (const LineaModelo &l : m.lineas)
        (l.debe ? pesoDebe : pesoHaber) += l.peso;
    // Each side is split so that it adds up to the total exactly.
    qint64 restoDebe = total, restoHaber = total;
    bool cambio = false;
    for (const LineaModelo &l : m.lineas) {
        if (!l.cuenta)
            break;
        qint64 &resto = l.debe ? restoDebe : restoHaber;
        int &peso = l.debe ? pesoDebe : pesoHaber;
        const qint64 parte = l.peso == peso ? resto : DividirRedondeando(resto * l.peso, peso);
        resto -= parte;
        peso -= l.peso;
        Linea nueva = linea(l.cuenta, l.debe, parte, fecha, l.proyecto, l.departamento);
        if (l.diasCotizacion > 0 && nueva.moneda != Demo::kMonedaPesos) {
            // Same amount in its currency as its pair, valued at the earlier rate.
            nueva.tasa = tasaDe(nueva.moneda, fecha.addDays(-l.diasCotizacion));
            nueva.importeMC = DividirRedondeando(nueva.importe * nueva.tasa, 10000);
            cambio = true;
        }
        a.lineas << nueva;
    }
    qint64 diferencia = 0;
    for (const Linea &l : a.lineas)
        diferencia += l.debe ? l.importeMC : -l.importeMC;
    if (cambio && diferencia != 0) {
        // The pair's two rates: a gain if the debit side came out larger, else a loss.
        a.lineas << (diferencia > 0 ? linea("4.2.02", H, diferencia, fecha) : linea("5.4.03", D, -diferencia, fecha));
        diferencia = 0;
    }
    // A line converted without a pair rounds on its own; the last peso line takes that.
    for (qsizetype i = a.lineas.size() - 1; i >= 0 && diferencia != 0; --i) {
        Linea &l = a.lineas[i];
        if (l.moneda == Demo::kMonedaPesos) {
            l.importe = l.importeMC += l.debe ? -diferencia : diferencia;
            diferencia = 0;
        }
    }
    Q_ASSERT(diferencia == 0);
    m_asientos << a;
}

void GeneradorDemo::agregarAlAzar(const QDate &fecha)
{
    int total = 0;
    for (const ModeloAsiento &m : kModelos)
        total += m.dia == 0 ? m.frecuencia : 0;
    for (;;) {
        int r = int(m_azar.entre(0, total - 1));
        const ModeloAsiento *m = std::find_if(std::begin(kModelos), std::end(kModelos), [&](const ModeloAsiento &x) {
            return x.dia == 0 && (r -= x.frecuencia) < 0;
        });
        if (abiertas(*m, fecha)) {
            agregarModelo(*m, fecha);
            return;
        }
    }
}

Liquidacion GeneradorDemo::liquidar(int indiceMes)
{
    static const qint64 kBase[3] = {14500000, 21000000, 12000000}; // ADM, VTA, DEP
    Liquidacion q{};
    qint64 bruto = 0;
    for (int d = 0; d < 3; ++d) {
        q.bruto[d] = DividirRedondeando(kBase[d] * (1000 + 4 * indiceMes), 1000) + m_azar.entre(-50000, 50000);
        q.cargas[d] = DividirRedondeando(q.bruto[d] * 12625, 100000);
        bruto += q.bruto[d];
        q.totalCargas += q.cargas[d];
    }
    q.bps = DividirRedondeando(bruto * 15, 100);
    q.fonasa = DividirRedondeando(bruto * 45, 1000);
    q.irpf = DividirRedondeando(bruto * m_azar.entre(50, 70), 1000);
    q.liquido = bruto - q.bps - q.fonasa - q.irpf;
    return q;
}

// Last month's payroll paid early in the month, its contributions mid-month, and this
// month's accrued on its last weekday, by department.
void GeneradorDemo::sueldos(const QDate &mes, const Liquidacion &anterior, const Liquidacion &q)
{
    const QDate fPago = diaHabil(mes, 4);
    if (enVentana(fPago))
        m_asientos << AsientoDemo{fPago, "Pago de sueldos de {mp}", 4, 0, {
            linea("2.3.01", D, anterior.liquido, fPago), linea("1.1.03", H, anterior.liquido, fPago)}};
    const QDate fAportes = diaHabil(mes, 17);
    const qint64 aportes = anterior.bps + anterior.totalCargas;
    if (enVentana(fAportes))
        m_asientos << AsientoDemo{fAportes, "Pago BPS y FONASA {mp}", 4, 0, {
            linea("2.3.02", D, aportes, fAportes), linea("2.3.03", D, anterior.fonasa, fAportes),
            linea("2.3.04", D, anterior.irpf, fAportes),
            linea("1.1.03", H, aportes + anterior.fonasa + anterior.irpf, fAportes)}};
    const QDate f = diaHabil(mes, 31);
    if (!enVentana(f))
        return;
    AsientoDemo a{f, "Sueldos de {m}", 5, 0, {}};
    for (int d = 0; d < 3; ++d)
        a.lineas << linea("5.2.01", D, q.bruto[d], f, 0, d + 1);
    for (int d = 0; d < 3; ++d)
        a.lineas << linea("5.2.02", D, q.cargas[d], f, 0, d + 1);
    a.lineas << linea("2.3.02", H, q.bps, f) << linea("2.3.03", H, q.fonasa, f) << linea("2.3.04", H, q.irpf, f)
             << linea("2.3.02", H, q.totalCargas, f) << linea("2.3.01", H, q.liquido, f);
    m_asientos << a;
}

void GeneradorDemo::armarAsientos()
{
    Liquidacion anterior = liquidar(0);
    int indice = 1;
    for (QDate mes(m_inicio.year(), m_inicio.month(), 1); mes <= m_hoy; mes = mes.addMonths(1), ++indice) {
        for (const ModeloAsiento &m : kModelos) {
            const QDate f = m.dia > 0 ? diaHabil(mes, m.dia) : QDate();
            if (f.isValid() && enVentana(f) && abiertas(m, f))
                agregarModelo(m, f);
        }
        const Liquidacion actual = liquidar(indice);
        sueldos(mes, anterior, actual);
        anterior = actual;
    }

    // Last movements of the accounts that were closed later.
    for (const ModeloAsiento &m : kModelos) {
        if (m.dia >= 0)
            continue;
        QDate f;
        for (const LineaModelo &l : m.lineas)
            if (l.cuenta && cuenta(l.cuenta).cierre.isValid())
                f = cuenta(l.cuenta).cierre.addDays(m.dia);
        while (esFinDeSemana(f))
            f = f.addDays(-1);
        if (enVentana(f))
            agregarModelo(m, f);
    }

    // The entries with another currency on one side only (dollars bought with pesos),
    // anywhere older: they balance in pesos.
    for (const ModeloAsiento &m : kModelosMixtos) {
        QDate f;
        do
            f = m_inicio.addDays(m_azar.entre(3, kDiasCotizacion - 31));
        while (esFinDeSemana(f) || !abiertas(m, f));
        agregarModelo(m, f);
    }

    // Something for the views of today and of the last days, then the rest anywhere.
    agregarAlAzar(m_hoy);
    agregarAlAzar(m_hoy);
    agregarAlAzar(m_hoy.addDays(-1));
    while (m_asientos.size() < kCantidadAsientos) {
        const qint64 desde = m_azar.porCiento(15) ? kDiasCotizacion - 30 : 3;
        QDate f = m_inicio.addDays(m_azar.entre(desde, kDiasCotizacion - 1));
        if (esFinDeSemana(f) && !m_azar.porCiento(15)) {
            f = f.addDays(5 - f.dayOfWeek());
            if (!enVentana(f))
                f = f.addDays(3);
        }
        agregarAlAzar(f);
    }
    std::stable_sort(m_asientos.begin(), m_asientos.end(),
                     [](const AsientoDemo &a, const AsientoDemo &b) { return a.fecha < b.fecha; });
}

// How the journal grid tells a balanced entry: a line on each side, the sides equal to the
// cent in pesos, and in the foreign currency too when every line is in that one currency.
bool cuadra(const AsientoDemo &a)
{
    bool debe = false, haber = false;
    bool todasEnMoneda = true; // every line in the one foreign currency: then it balances too
    qint64 enPesos = 0, enMoneda = 0;
    for (const Linea &l : a.lineas) {
        (l.debe ? debe : haber) = true;
        enPesos += l.debe ? l.importeMC : -l.importeMC;
        todasEnMoneda = todasEnMoneda && l.moneda != Demo::kMonedaPesos;
        if (l.moneda != Demo::kMonedaPesos)
            enMoneda += l.debe ? l.importe : -l.importe;
    }
    return debe && haber && enPesos == 0 && (!todasEnMoneda || enMoneda == 0);
}

qsizetype monedasExtranjeras(const AsientoDemo &a)
{
    QList<int> monedas;
    for (const Linea &l : a.lineas)
        if (l.moneda != Demo::kMonedaPesos && !monedas.contains(l.moneda))
            monedas << l.moneda;
    return monedas.size();
}

// Picks cantidad positions from candidatos without repeating any.
QList<int> elegir(Azar &azar, QList<int> candidatos, int cantidad)
{
    QList<int> elegidos;
    for (int i = 0; i < cantidad && !candidatos.isEmpty(); ++i)
        elegidos << candidatos.takeAt(azar.entre(0, candidatos.size() - 1));
    return elegidos;
}

void GeneradorDemo::asignarEstados()
{
    const int n = int(m_asientos.size());
    const int recientes = n - 50;
    const auto registrados = [&](int desde, int hasta) {
        QList<int> r;
        for (int i = std::max(0, desde); i < hasta; ++i)
            if (m_asientos[i].estado == 1)
                r << i;
        return r;
    };
    // Drafts are mostly the recent work; incomplete and trashed entries anywhere older.
    for (int i : elegir(m_azar, registrados(recientes, n), 25))
        m_asientos[i].estado = 0;
    for (int i : elegir(m_azar, registrados(0, recientes), 15))
        m_asientos[i].estado = 0;
    for (int i : elegir(m_azar, registrados(0, recientes), 12)) {
        AsientoDemo &a = m_asientos[i];
        a.estado = 2;
        if (a.lineas.size() > 2 && m_azar.porCiento(50)) {
            a.lineas.removeLast(); // never finished
        } else {
            Linea &l = a.lineas.last(); // a mistyped amount
            l.importe += m_azar.entre(100, 50000);
            l.importeMC = DividirRedondeando(l.importe * l.tasa, 10000);
        }
    }
    for (int i : elegir(m_azar, registrados(0, n - 5), 20))
        m_asientos[i].estado = 9;
    for (const AsientoDemo &a : std::as_const(m_asientos)) {
        Q_ASSERT(cuadra(a) == (a.estado != 2));
        Q_ASSERT(monedasExtranjeras(a) <= 1);
    }
}

QString GeneradorDemo::leyendaDe(const AsientoDemo &a)
{
    const auto de = [&](const auto &lista, int desplazamiento) {
        return QString::fromUtf8(lista[(a.sorteo >> desplazamiento) % std::size(lista)]);
    };
    QString t = QString::fromUtf8(a.leyenda);
    if (t.contains(QLatin1String("{f}")))
        t.replace(QLatin1String("{f}"), QString::number(m_factura++));
    if (t.contains(QLatin1String("{r}")))
        t.replace(QLatin1String("{r}"), QString::number(m_recibo++));
    t.replace(QLatin1String("{n}"), QString::number(1000 + (a.sorteo >> 40) % 9000));
    t.replace(QLatin1String("{c}"), de(kClientes, 0));
    t.replace(QLatin1String("{x}"), de(kClientesExterior, 0));
    t.replace(QLatin1String("{p}"), de(kProveedores, 20));
    t.replace(QLatin1String("{e}"), de(kProveedoresExterior, 20));
    t.replace(QLatin1String("{mp}"), QString::fromUtf8(kMeses[a.fecha.addMonths(-1).month() - 1]));
    t.replace(QLatin1String("{m}"), QString::fromUtf8(kMeses[a.fecha.month() - 1]));
    return t;
}

void GeneradorDemo::insertarAsientos()
{
    QList<QVariantList> cabezales, lineas;
    for (int i = 0; i < m_asientos.size(); ++i) {
        const AsientoDemo &a = m_asientos[i];
        const int id = i + 1;
        const QTime hora = QTime(8, 0).addMSecs(int(m_azar.entre(0, 12 * 3600 * 1000 - 1)));
        const QVariant momento = Conexion::ValorFechaHora(QDateTime(a.fecha, hora, Qt::UTC));
        const int libro = m_azar.porCiento(3) ? 0 : a.libro;
        const int usuario = m_azar.porCiento(70) ? Demo::kUsuarioAdministrador : Demo::kUsuarioContador;
        QVariant verificador = m_azar.porCiento(50) ? QVariant(0) : QVariant();
        QVariant verificado;
        if (m_azar.porCiento(20)) {
            verificador = Demo::kUsuarioContador;
            if (a.estado == 1 && m_azar.porCiento(30))
                verificado = 1;
        }
        cabezales.append({id, Demo::kEmpresa, a.estado, Conexion::ValorFecha(a.fecha), momento, momento, leyendaDe(a),
                          libro ? QVariant(libro) : QVariant(), verificador, verificado, usuario});
        int orden = 0;
        for (const Linea &l : a.lineas)
            lineas.append({lineas.size() + 1, id, l.cuenta, l.proyecto, l.departamento,
                           l.debe ? centesimos(l.importe) : kSinNumero, l.debe ? kSinNumero : centesimos(l.importe),
                           centesimos(l.importeMC), ++orden});
    }
    InsertarEnBloques(m_conexion, "cceAsientos", "AsiID, AsiEmpresa, AsiEstado, AsiFechaAsiento, AsiFechaModificado, AsiFechaEstado,"
                                        " AsiLeyenda, AsiTipo, AsiUsuarioVerificador, AsiVerificado, AsiUsuario", cabezales);
    InsertarEnBloques(m_conexion, "cceAsientoCuenta", "ACuID, ACuIDAsiento, ACuCuenta, ACuProyecto, ACuDepartamento, ACuDebe,"
                                             " AcuHaber, ACuImporteMC, ACuOrden", lineas);
}

} // namespace

void CrearBaseDemo(Conexion &conexion, const QDate &hoy)
{
    CrearEsquema(conexion);
    GeneradorDemo(conexion, hoy).Generar();
}

void CrearBaseVacia(Conexion &conexion, const QDate &hoy)
{
    Transaccion tx(conexion);
    CrearEsquema(conexion);
    insertarBasicos(conexion, hoy, "Mi empresa");
    tx.Confirmar();
}
