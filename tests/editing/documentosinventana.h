#pragma once

// A document's entry commands without a window: the demo company, a grid holding only the
// new-entry row, and a screen of plain values. The database is read back afterwards.
#include "comun/asientosdeprueba.h"
#include "comun/basesprueba.h"
#include "comun/datosdeprueba.h"
#include "comun/mensajesguionados.h"

#include "editing/comandosasiento.h"
#include "editing/comandosasientoentero.h"
#include "entries/vistas.h"
#include "store/basedemo.h"
#include "store/valoressql.h"

#include <gtest/gtest.h>

// The header and the line typed are values the test sets; what the session shows is
// recorded. Loading a row into the line editor puts that row's line in it, so accepting
// without touching it hands the same line back.
class VistaDePrueba final : public VistaEdicion
{
public:
    int FilaActual() const override { return fila; }
    void SeleccionarFila(int f) override { fila = f; }
    void ActualizarContexto() override {}
    void FijarLibros(const QList<std::pair<QString, qint16>> &) override {}
    bool ConAutoriza() const override { return true; }
    void AbrirCabezal(const ValoresCabezal &v) override { cabezal = v; }
    ValoresCabezal LeerCabezal() override { return cabezal; }
    void FijarFecha(const QDate &f) override
    {
        fechasFijadas << f;
        cabezal.fecha = f; // the field shows it, as the real one does
    }
    void EnfocarFecha() override { ++enfoquesFecha; }
    void CargarEditor(const QDate &, std::optional<std::pair<bool, Importe>> d, const std::optional<RegistroLinea> &l) override
    {
        diferencia = d;
        debe = haber = std::nullopt;
        if (l) {
            const QDate cierre = QDate::fromString(l->dFechaCierre, Qt::ISODate);
            (l->bEsAlDebe ? debe : haber) = ValorLinea{l->lCta, l->iPry, l->iDep, l->iMon, l->dImporte, l->dTCambio,
                                                       l->dImporteMC, l->sTextDisplay, cierre.isValid() ? cierre : QDate(1901, 1, 1)};
        }
    }
    std::optional<ValorLinea> LineaDelEditor(bool d) const override { return d ? debe : haber; }
    void MostrarEditor(int f, bool) override { editores << f; }
    void CerrarEdicion(int f) override { cerrada = f; }

    int fila = 0;
    ValoresCabezal cabezal;                // LeerCabezal answers it
    std::optional<ValorLinea> debe, haber; // what LineaDelEditor answers
    std::optional<std::pair<bool, Importe>> diferencia;
    QList<int> editores;
    QList<QDate> fechasFijadas;
    int enfoquesFecha = 0;
    int cerrada = -1;
};

class DocumentoSinVentana : public ::testing::TestWithParam<Motor>
{
protected:
    DocumentoSinVentana()
        : m_base(GetParam(), BaseDePrueba::Contenido::Demo)
    {
        PrepararDatosDocumento(m_datos, m_base.conexion(), m_mensajes);
        m_ctx = {&m_datos.monedas(), m_datos.empresa.monedaContabilidad, m_datos.empresa.mostrarCodigoCta, m_datos.formatoFecha,
                 m_datos.texto};
        m_ctx.empresa = Demo::kEmpresa;
        m_ctx.reloj = m_base.reloj();
        m_ctx.delimitadorFecha = m_datos.parametros().delimitadorFecha;
        m_ctx.patronFecha = m_datos.parametros().formatoFecha;
        PrepararGrillaAsientos(m_grilla, QStringLiteral("<Cuenta|<|>Debe|>Haber|>T. Cambio|>Importe M/E"));
        for (int c : {2, 3})
            m_grilla.FijarFormatoColumna(c, m_datos.monedas().DatoMoneda(0, 4).toString());
        m_asientos.FilaNuevoAsiento();
    }

    void ejecutar(const QString &sql, const QVariantList &valores = {}) { m_base.conexion().Ejecutar(sql, valores); }
    int contar(const QString &sql, const QVariantList &valores = {}) { return m_base.Valor(sql, valores).toInt(); }
    qint32 ultimoId() { return m_base.UltimoAsiento(); }
    QList<qint32> ids(const QString &condicion) { return m_base.Asientos(condicion); }
    // Puts a stored entry before the new-entry row and makes its header row current.
    int cargar(qint32 id)
    {
        m_vista.fila = m_grilla.Filas() - 1;
        EXPECT_FALSE(CargarAsientoEnGrilla(m_asientos, m_base.conexion(), id, m_vista.fila));
        return m_vista.fila;
    }
    // A stored entry as AsientoComoTexto gives it, its header without "verificado"; with
    // conSello, the modification stamp last.
    QStringList enBase(qint32 id, bool conSello = false)
    {
        QString sello;
        QStringList a = AsientoComoTexto(m_base.conexion(), id, &sello);
        if (a.isEmpty())
            return a;
        a[0] = a[0].section(u'|', 0, 4);
        return conSello ? a << sello : a;
    }
    // "estado|fecha|leyenda|libro" of a stored entry.
    QString cabezal(qint32 id) { return enBase(id).value(0).section(u'|', 0, 3); }

    BaseDePrueba m_base;
    MensajesGuionados m_mensajes;
    DatosDocumento m_datos;
    ContextoAsientos m_ctx;
    Grilla m_grilla;
    AsientosGrilla m_asientos{m_grilla, m_ctx};
    VistaDePrueba m_vista;
    ComandosAsiento m_comandos{m_datos, m_asientos, m_vista};
    ComandosAsientoEntero m_asientoEntero{m_datos, m_asientos, m_vista, m_comandos};
};
