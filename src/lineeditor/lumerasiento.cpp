#include "lumerasiento.h"

#include "campocalculadora.h"

#include "currency/catalogomonedas.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>

lumERAsiento::lumERAsiento(ContextoLinea contexto, QWidget *padre)
    : QWidget(padre)
    , m_ctx(std::move(contexto))
{
    setObjectName(QStringLiteral("oraEdit"));
    QFont tahoma(QStringLiteral("Tahoma"));
    tahoma.setPointSizeF(font().pointSizeF());

    auto cuenta = [&](const char *nombre) {
        auto *e = new QLineEdit(this);
        e->setObjectName(QString::fromLatin1(nombre));
        e->setFont(tahoma);
        return e;
    };
    tDebe = cuenta("tDebe");
    tHaber = cuenta("tHaber");
    cfMoneda = new QComboBox(this);
    cfMoneda->setObjectName(QStringLiteral("cfMoneda"));
    cfMoneda->setFont(tahoma);
    ocImporte = new CampoCalculadora(QStringLiteral("ocImporte"), this);
    ocTCambio = new CampoCalculadora(QStringLiteral("ocTCambio"), this);
    ocImporteMC = new CampoCalculadora(QStringLiteral("ocImporteMC"), this);
    AsignarTextos();
    for (QWidget *w : {static_cast<QWidget *>(tDebe), static_cast<QWidget *>(tHaber), static_cast<QWidget *>(cfMoneda),
                       static_cast<QWidget *>(ocImporte), static_cast<QWidget *>(ocTCambio),
                       static_cast<QWidget *>(ocImporteMC)}) {
        w->setFont(tahoma);
        w->installEventFilter(this);
    }
    const QList<QWidget *> orden = camposEnOrden();
    for (qsizetype i = 1; i < orden.size(); ++i)
        setTabOrder(orden[i - 1], orden[i]);

    connect(tDebe, &QLineEdit::textEdited, this, [this] { CuentaEditada(true); });
    connect(tHaber, &QLineEdit::textEdited, this, [this] { CuentaEditada(false); });
    connect(cfMoneda, qOverload<int>(&QComboBox::activated), this, [this] { MonedaCambiada(); });
    connect(ocImporte, &QLineEdit::editingFinished, this, [this] { CampoCalculoTerminado(1); });
    connect(ocTCambio, &QLineEdit::editingFinished, this, [this] { CampoCalculoTerminado(2); });
    connect(ocImporteMC, &QLineEdit::editingFinished, this, [this] { CampoCalculoTerminado(3); });
    // Queued: the message comes once the focus has moved, not from inside the focus change.
    for (CampoCalculadora *c : {ocImporte, ocTCambio, ocImporteMC})
        connect(c, &CampoCalculadora::TextoInvalido, this, [this, c] { RechazarNumero(c); }, Qt::QueuedConnection);

    // A screen reader hears what the line holds whenever it changes.
    for (QLineEdit *e : {tDebe, tHaber, static_cast<QLineEdit *>(ocImporte), static_cast<QLineEdit *>(ocTCambio),
                         static_cast<QLineEdit *>(ocImporteMC)})
        connect(e, &QLineEdit::textChanged, this, &lumERAsiento::decirContenido);
    connect(cfMoneda, &QComboBox::currentIndexChanged, this, &lumERAsiento::decirContenido);

    InitRegistro();
    acomodar();
}

void lumERAsiento::FijarContexto(ContextoLinea contexto)
{
    m_ctx = std::move(contexto);
    AsignarTextos();
}

// The names a screen reader says for the line and its fields, once the context gives texts.
void lumERAsiento::AsignarTextos()
{
    if (!m_ctx.texto)
        return;
    setAccessibleName(m_ctx.texto(2090));
    tDebe->setAccessibleName(m_ctx.texto(2091));
    tHaber->setAccessibleName(m_ctx.texto(2092));
    cfMoneda->setAccessibleName(m_ctx.texto(2025));
    ocImporte->setAccessibleName(m_ctx.texto(2093));
    ocTCambio->setAccessibleName(m_ctx.texto(2094));
    ocImporteMC->setAccessibleName(m_ctx.texto(2095));
}

QString lumERAsiento::TextoAccesible() const
{
    if (!m_ctx.texto)
        return {};
    QStringList partes;
    auto agregar = [&partes](const QString &t) {
        if (!t.trimmed().isEmpty())
            partes << t.trimmed();
    };
    // The side is the box with an account, or with text typed when neither has one yet.
    const bool alDebe = m_debe.lCta >= 1 || (m_haber.lCta < 1 && !tDebe->text().trimmed().isEmpty());
    QLineEdit *cuenta = alDebe ? tDebe : tHaber;
    if (cuenta->text().trimmed().isEmpty())
        return {};
    agregar(m_ctx.texto(alDebe ? 1069 : 1070).trimmed() + u' ' + cuenta->text().trimmed());
    // Amounts and the rate by their currencies' masks, as the grid shows them.
    const qint16 moneda = MonedaCombo();
    if (const QString importe = ocImporte->TextoConMascara(mascaraImporte(moneda)); !importe.isEmpty())
        agregar(importe + u' ' + cfMoneda->currentText());
    if (const QString tasa = ocTCambio->TextoConMascara(mascaraTasa(moneda)); ocTCambio->isEnabled() && !tasa.isEmpty()) {
        // The converted amount is in the currency the amount is not typed in.
        const qint16 deCuenta = (alDebe ? m_debe : m_haber).iMon;
        const qint16 otra = moneda == m_ctx.monedaContabilidad ? deCuenta : m_ctx.monedaContabilidad;
        agregar(m_ctx.texto(1063).trimmed() + u' ' + (m_operador.isEmpty() ? QString() : m_operador + u' ') + tasa);
        if (const QString convertido = ocImporteMC->TextoConMascara(mascaraImporte(otra)); !convertido.isEmpty())
            agregar(convertido + u' ' + simbolo(otra).trimmed());
    }
    return partes.join(QStringLiteral(", "));
}

void lumERAsiento::decirContenido()
{
    const QString texto = TextoAccesible();
    if (texto != accessibleDescription())
        setAccessibleDescription(texto);
}

CampoCalculadora *lumERAsiento::campo(int codigo) const
{
    switch (codigo) {
    case kImporte:
        return ocImporte;
    case kTCambio:
        return ocTCambio;
    case kImporteMC:
        return ocImporteMC;
    default:
        return nullptr;
    }
}

QList<QWidget *> lumERAsiento::camposEnOrden() const
{
    return {tDebe, tHaber, cfMoneda, ocImporte, ocTCambio, ocImporteMC};
}

int lumERAsiento::twipsAPx(int twips) const
{
    return qRound(twips * logicalDpiX() / 1440.0);
}

void lumERAsiento::acomodar()
{
    QWidget *campos[] = {tDebe, tHaber, cfMoneda, ocImporte, ocTCambio, ocImporteMC};
    for (int i = 0; i < 6; ++i) {
        if (i == 5 && m_width[5] <= 0)
            continue;
        campos[i]->setGeometry(twipsAPx(m_left[i]), campos[i]->y(), twipsAPx(m_width[i]), twipsAPx(m_alto));
    }
}

void lumERAsiento::resizeEvent(QResizeEvent *evento)
{
    QWidget::resizeEvent(evento);
    acomodar();
}

void lumERAsiento::setLeft(int campo, int twips)
{
    m_left[campo - 1] = twips;
    acomodar();
}

void lumERAsiento::setWidth(int campo, int twips)
{
    m_width[campo - 1] = twips;
    acomodar();
}

void lumERAsiento::setHeightAllCtrl(int twips)
{
    m_alto = twips;
    acomodar();
}

qint16 lumERAsiento::MonedaCombo() const
{
    return cfMoneda->currentIndex() < 0 ? 0 : qint16(cfMoneda->currentData().toInt());
}

void lumERAsiento::setMonedaCombo(qint16 moneda)
{
    AgregarMoneda(moneda);
    cfMoneda->setCurrentIndex(cfMoneda->findData(moneda));
    m_tagMoneda = QString::number(m_ctx.monedaContabilidad);
}

// The fields compute in doubles (a typed "1250*1,22"); what leaves them is an amount.
Importe lumERAsiento::ImporteCta() const { return Importe::DesdeDouble(ocImporte->Valor()); }
double lumERAsiento::ImporteTC() const { return ocTCambio->Valor(); }
Importe lumERAsiento::ImporteMC() const { return Importe::DesdeDouble(ocImporteMC->Valor()); }

void lumERAsiento::setImporteCta(Importe valor)
{
    ocImporte->FijarValor(valor.aDouble());
    ocImporte->Tag = TextoDecimal(valor.aDouble());
}

void lumERAsiento::setImporteTC(double valor)
{
    ocTCambio->FijarValor(valor);
    ocTCambio->Tag = TextoDecimal(valor);
}

void lumERAsiento::setImporteMC(Importe valor)
{
    ocImporteMC->FijarValor(valor.aDouble());
    ocImporteMC->Tag = TextoDecimal(valor.aDouble());
}

void lumERAsiento::InitRegistro()
{
    m_cambiandoCuenta = true;
    tDebe->clear();
    tHaber->clear();
    m_cambiandoCuenta = false;
    m_tagDebe.clear();
    m_tagHaber.clear();
    m_debe = CuentaLinea();
    m_haber = CuentaLinea();
    for (CampoCalculadora *c : {ocImporte, ocTCambio, ocImporteMC}) {
        c->Limpiar();
        c->Tag.clear();
    }
    cfMoneda->clear();
    m_tagMoneda.clear();
    EstadoTasa();
    m_diferencia = {};
}

void lumERAsiento::SetCuenta(bool bEsAlDebe, qint32 lCta, qint16 iPry, qint16 iDep, qint16 iMon, const QString &sTextDisplay,
                             const QDate &dFechaCierre)
{
    CuentaLinea &c = bEsAlDebe ? m_debe : m_haber;
    c.lCta = lCta;
    c.iPry = iPry;
    c.iDep = iDep;
    c.iMon = iMon;
    c.sTextDisplay = sTextDisplay;
    c.dFechaCierre = dFechaCierre.isValid() ? dFechaCierre : QDate(1901, 1, 1);
    m_cambiandoCuenta = true;
    (bEsAlDebe ? tDebe : tHaber)->setText(sTextDisplay);
    m_cambiandoCuenta = false;
    (bEsAlDebe ? m_tagDebe : m_tagHaber) = QStringLiteral("1");
    AgregarMoneda(iMon);
}

ValorLinea lumERAsiento::GetValorCuentaDebe()
{
    return valorDe(m_debe);
}

ValorLinea lumERAsiento::GetValorCuentaHaber()
{
    return valorDe(m_haber);
}

bool lumERAsiento::ValidateCtrl(int &iCtrl) const
{
    iCtrl = 0;
    const bool debe = CuentaIngresadaAlDebe();
    const bool haber = CuentaIngresadaAlHaber();
    if ((debe && haber && !m_permitirDosCtas) || (!debe && !haber)
        || (debe && haber && m_debe.lCta == m_haber.lCta && m_debe.iPry == m_haber.iPry && m_debe.iDep == m_haber.iDep))
        iCtrl = 1;
    else if (!ocImporte->EsNumeroValido())
        iCtrl = 3;
    else if (ocTCambio->isEnabled() && !ocTCambio->EsNumeroValido())
        iCtrl = 4;
    return iCtrl == 0;
}

void lumERAsiento::SetDiferencia(bool bAlDebe, Importe cDiferencia)
{
    m_diferenciaAlDebe = bAlDebe;
    m_diferencia = cDiferencia;
}

void lumERAsiento::SetFocusCtrl(int iIndex, int keyAscii)
{
    m_operador = QStringLiteral("*");
    EstadoTasa();
    const QChar tecla = keyAscii >= 32 ? QChar(keyAscii) : QChar();
    QWidget *destino = nullptr;
    switch (iIndex) {
    case kDebe:
    case kHaber: {
        QLineEdit *caja = iIndex == kDebe ? tDebe : tHaber;
        destino = caja;
        if (!tecla.isNull()) {
            caja->setText(QString(tecla));
            CuentaEditada(iIndex == kDebe);
        }
        break;
    }
    case kMoneda:
    case kImporte:
        destino = ocImporte;
        break;
    case kTCambio:
        destino = ocTCambio->isEnabled() ? ocTCambio : ocImporte;
        break;
    case kImporteMC:
        destino = ocImporteMC;
        break;
    default:
        return;
    }
    if (auto *calculo = qobject_cast<CampoCalculadora *>(destino)) {
        calculo->Limpiar();
        if (tecla.isDigit())
            calculo->setText(QString(tecla));
    }
    destino->setFocus();
    if (auto *caja = qobject_cast<QLineEdit *>(destino))
        caja->deselect(), caja->end(false);
}

int lumERAsiento::codigoDe(QObject *objeto) const
{
    if (objeto == tDebe)
        return kDebe;
    if (objeto == tHaber)
        return kHaber;
    if (objeto == cfMoneda)
        return kMoneda;
    if (objeto == ocImporte)
        return kImporte;
    if (objeto == ocTCambio)
        return kTCambio;
    if (objeto == ocImporteMC)
        return kImporteMC;
    return 0;
}

void lumERAsiento::alFoco(int codigo)
{
    // The two account boxes overlap: the one in use comes to the front in the window colour,
    // the other stays behind in light grey.
    if (codigo == kDebe || codigo == kHaber) {
        QLineEdit *delante = codigo == kDebe ? tDebe : tHaber;
        QLineEdit *detras = codigo == kDebe ? tHaber : tDebe;
        delante->raise();
        QPalette p = delante->palette();
        p.setColor(QPalette::Base, palette().color(QPalette::Base));
        delante->setPalette(p);
        p.setColor(QPalette::Base, QColor(0xef, 0xef, 0xef));
        detras->setPalette(p);
        if (!(codigo == kDebe ? m_tagDebe : m_tagHaber).isEmpty())
            delante->selectAll();
    }
    int c = codigo;
    emit GotFocusCtrl(&c);
}

bool lumERAsiento::eventFilter(QObject *objeto, QEvent *evento)
{
    const int codigo = codigoDe(objeto);
    if (!codigo)
        return QWidget::eventFilter(objeto, evento);
    switch (evento->type()) {
    case QEvent::FocusIn:
        alFoco(codigo);
        break;
    case QEvent::FocusOut: {
        int c = codigo;
        emit LotFocusCtrl(&c);
        if ((codigo == kDebe || codigo == kHaber) && static_cast<QFocusEvent *>(evento)->reason() != Qt::PopupFocusReason) {
            const bool debe = codigo == kDebe;
            QLineEdit *caja = debe ? tDebe : tHaber;
            const QString tag = debe ? m_tagDebe : m_tagHaber;
            if (!m_validando && !caja->text().trimmed().isEmpty() && (tag.isEmpty() || tag == QLatin1String("0"))
                && isVisible() && !ValidarCuenta(debe)) {
                caja->setFocus();
                caja->selectAll();
            }
        }
        break;
    }
    case QEvent::MouseButtonPress: {
        auto *m = static_cast<QMouseEvent *>(evento);
        int c = codigo;
        int boton = int(m->button());
        int shift = int(m->modifiers() >> 25);
        float x = float(m->position().x());
        float y = float(m->position().y());
        emit MouseDownCtrl(&c, &boton, &shift, &x, &y);
        break;
    }
    case QEvent::KeyPress: {
        auto *k = static_cast<QKeyEvent *>(evento);
        int c = codigo;
        int tecla = k->key();
        int shift = int(k->modifiers() >> 25);
        emit KeyDownCtrl(&c, &tecla, &shift);
        if (tecla == 0)
            return true; // the container took the key
        // Tab goes on as Enter does, and Shift+Tab back to the field Enter came from.
        const bool conOtraTecla = k->modifiers() & (Qt::ControlModifier | Qt::AltModifier);
        if (k->key() == Qt::Key_Backtab && !conOtraTecla && codigo != kDebe) {
            (codigo != kHaber && CuentaIngresadaAlHaber() ? tHaber : tDebe)->setFocus(Qt::BacktabFocusReason);
            return true;
        }
        if (k->key() != Qt::Key_Return && k->key() != Qt::Key_Enter && (k->key() != Qt::Key_Tab || conOtraTecla))
            break;
        switch (codigo) {
        case kDebe:
        case kHaber:
            EnterEnCuenta(codigo == kDebe);
            return true;
        case kMoneda:
            ocImporte->setFocus();
            return true;
        case kImporte:
            if (RechazarNumeroInvalido(ocImporte))
                return true;
            CampoCalculoTerminado(1);
            ConfirmarLinea();
            return true;
        case kTCambio:
            if (RechazarNumeroInvalido(ocTCambio))
                return true;
            CampoCalculoTerminado(2);
            (ocImporteMC->isEnabled() ? static_cast<QWidget *>(ocImporteMC) : ocImporte)->setFocus();
            return true;
        case kImporteMC:
            if (RechazarNumeroInvalido(ocImporteMC))
                return true;
            CampoCalculoTerminado(3);
            ConfirmarLinea();
            return true;
        }
        break;
    }
    default:
        break;
    }
    return QWidget::eventFilter(objeto, evento);
}

QString lumERAsiento::simbolo(qint16 moneda) const
{
    return m_ctx.monedas ? m_ctx.monedas->DatoMoneda(moneda, 2).toString() : QString();
}

QString lumERAsiento::mascaraImporte(qint16 moneda) const
{
    return m_ctx.monedas ? m_ctx.monedas->DatoMoneda(moneda, 4).toString() : QStringLiteral("#,##0.00");
}

QString lumERAsiento::mascaraTasa(qint16 moneda) const
{
    return m_ctx.monedas ? m_ctx.monedas->DatoMoneda(moneda, 5).toString() : QStringLiteral("#,##0.000");
}
