#pragma once

#include "entries/modeloasiento.h"

#include "currency/importe.h"
#include "currency/tipocambio.h"

#include <QDate>
#include <QWidget>

#include <functional>

class CampoCalculadora;
class CatalogoMonedas;
class Conexion;
class QComboBox;
class QLineEdit;
class ServicioBusquedaCuentas;
class ServicioMensajes;

// What the line editor needs of the session.
struct ContextoLinea
{
    Conexion *conexion = nullptr;
    CatalogoMonedas *monedas = nullptr;
    ServicioMensajes *mensajes = nullptr;
    ServicioBusquedaCuentas *busqueda = nullptr;
    qint32 empresa = 0;
    qint16 monedaContabilidad = 0;
    bool mostrarCodigoCta = true;
    qint16 tipoTCComprobantes = 0;
    ReglasCotizacion reglas;
    std::function<QString(int)> texto; // catalogue text by its number
};

// One side's account.
struct CuentaLinea
{
    qint32 lCta = 0;     // 0: no account on this side
    qint16 iPry = 0;
    qint16 iDep = 0;
    qint16 iMon = 0;
    QString sTextDisplay;
    QDate dFechaCierre{1901, 1, 1}; // closed until; 1 January 1901 when open
};

// The line editor: debit account, credit account, currency, amount, rate and converted
// amount, fields 1 to 6. It looks accounts up and checks them, keeps the three amounts
// consistent and tells its container through the signals below (all arguments by pointer,
// so the container can answer).
class lumERAsiento : public QWidget
{
    Q_OBJECT
public:
    enum Campo { kDebe = 1, kHaber = 2, kMoneda = 3, kImporte = 4, kTCambio = 5, kImporteMC = 6 };

    explicit lumERAsiento(ContextoLinea contexto, QWidget *padre = nullptr);
    void FijarContexto(ContextoLinea contexto);

    // Properties.
    void setFechaAsiento(const QDate &fecha) { m_fechaAsiento = fecha; }
    QDate FechaAsiento() const { return m_fechaAsiento; }
    qint16 MonedaCombo() const;
    void setMonedaCombo(qint16 moneda);
    Importe ImporteCta() const;
    void setImporteCta(Importe valor);
    double ImporteTC() const;
    void setImporteTC(double valor);
    Importe ImporteMC() const;
    void setImporteMC(Importe valor);
    bool PermitirDosCtas() const { return m_permitirDosCtas; }
    void setPermitirDosCtas(bool si) { m_permitirDosCtas = si; }
    // Layout in twips: left edges and widths of fields 1 to 6, and the height of all.
    int Left(int campo) const { return m_left[campo - 1]; }
    void setLeft(int campo, int twips);
    int Width(int campo) const { return m_width[campo - 1]; }
    void setWidth(int campo, int twips);
    int HeightAllCtrl() const { return m_alto; }
    void setHeightAllCtrl(int twips);
    QString Operador() const { return m_operador; }

    // Methods.
    void InitRegistro();
    // Shows a stored line ready to be accepted again: its account at its side, its currency
    // selected, its amounts, and for a foreign currency the rate (accounting units per unit;
    // one below 1 is shown as its reciprocal with "/") with the rate fields enabled.
    void CargarLinea(const RegistroLinea &linea);
    void SetCuenta(bool bEsAlDebe, qint32 lCta, qint16 iPry, qint16 iDep, qint16 iMon, const QString &sTextDisplay,
                   const QDate &dFechaCierre);
    ValorLinea GetValorCuentaDebe();
    ValorLinea GetValorCuentaHaber();
    void SetFocusCtrl(int iIndex, int keyAscii);
    bool CuentaIngresadaAlDebe() const { return m_debe.lCta >= 1; }
    bool CuentaIngresadaAlHaber() const { return m_haber.lCta >= 1; }
    bool ValidateCtrl(int &iCtrl) const;
    void SetDiferencia(bool bAlDebe, Importe cDiferencia);

    QLineEdit *campoCuenta(bool debe) const { return debe ? tDebe : tHaber; }
    QComboBox *listaMonedas() const { return cfMoneda; }
    // What the line holds, as a screen reader says it (and as the grid says a line): its side
    // and account, the amount and its currency, and for a foreign currency the rate and the
    // other currency's amount; empty while nothing is typed. It is the editor's accessible
    // description, kept up to date as the fields change.
    QString TextoAccesible() const;
    CampoCalculadora *campo(int codigo) const;
    // The line's fields in the order Enter and Tab go through them.
    QList<QWidget *> camposEnOrden() const;

signals:
    void EnabledContenedor(bool *bEnabled);
    void EditOK(bool *Cancel);
    void MonedaResultadoTC(QString *sSimbolo, QString *sOperador);
    void GetTCME(qint16 *iMon, double *cTC);
    void GotFocusCtrl(int *ctrl);
    void LotFocusCtrl(int *ctrl);
    void KeyDownCtrl(int *ctrl, int *keyCode, int *shift);
    void MouseDownCtrl(int *ctrl, int *button, int *shift, float *x, float *y);

protected:
    bool eventFilter(QObject *objeto, QEvent *evento) override;
    void resizeEvent(QResizeEvent *evento) override;

private:
    // Accounts.
    bool ValidarCuenta(bool bEsAlDebe);
    bool BuscarCuenta(const QString &texto, bool bEsAlDebe);
    void ConfirmarLinea();
    void EnterEnCuenta(bool bEsAlDebe);
    void CuentaEditada(bool bEsAlDebe);
    void PrepararImportes(bool bEsAlDebe, bool moverFoco);
    void QuitarCuenta(bool bEsAlDebe);
    void Advertir(int texto, QWidget *foco);
    void AsignarTextos();
    void decirContenido();

    // Amounts.
    void AgregarMoneda(qint16 moneda);
    void QuitarMoneda(qint16 moneda);
    void EstadoTasa();
    void MonedaCambiada();
    void BuscarTasa();
    void Recalcular(int cambiado);
    void CampoCalculoTerminado(int cambiado);
    // A refused number (text 1950) in that field; the focus goes back to it.
    void RechazarNumero(CampoCalculadora *campo);
    // Refuses the first enabled calculator field, that one first, whose text is refused;
    // true when one was.
    bool RechazarNumeroInvalido(CampoCalculadora *primero);
    // Shows r, units of b per unit of the selected currency s, the way the editor shows
    // rates: one below 1 as its reciprocal with "/"; sets the masks and the headings.
    void MostrarTasa(double r, qint16 s, qint16 b);
    ValorLinea valorDe(const CuentaLinea &c);
    double cotizacion(qint16 origen, qint16 destino, bool decir);
    void decirFallo(const Fallo &fallo);

    void acomodar();
    void alFoco(int codigo);
    int codigoDe(QObject *objeto) const;
    QString simbolo(qint16 moneda) const;
    QString mascaraImporte(qint16 moneda) const;
    QString mascaraTasa(qint16 moneda) const;
    int twipsAPx(int twips) const;

    ContextoLinea m_ctx;
    QLineEdit *tDebe = nullptr;
    QLineEdit *tHaber = nullptr;
    QComboBox *cfMoneda = nullptr;
    CampoCalculadora *ocImporte = nullptr;
    CampoCalculadora *ocTCambio = nullptr;
    CampoCalculadora *ocImporteMC = nullptr;
    QString m_tagDebe;
    QString m_tagHaber;
    QString m_tagMoneda;

    CuentaLinea m_debe;
    CuentaLinea m_haber;
    QDate m_fechaAsiento;
    QString m_operador = QStringLiteral("*");
    bool m_diferenciaAlDebe = false;
    Importe m_diferencia;
    bool m_permitirDosCtas = false;
    bool m_cambiandoCuenta = false;
    bool m_validando = false;
    int m_left[6] = {0, 500, 0, 0, 0, 0};
    int m_width[6] = {1000, 1000, 1000, 1000, 1000, 1000};
    int m_alto = 315;
};
