#include "dialogohistorial.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QJsonArray>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

DialogoHistorial::DialogoHistorial(qint32 asiID, const QList<HistorialAsiento::Fila> &filas, const QString &formatoFecha,
                                   std::function<QString(int)> texto, QHash<int, QString> libros, QWidget *padre)
    : QDialog(padre)
    , m_filas(filas)
    , m_texto(std::move(texto))
    , m_libros(std::move(libros))
{
    setObjectName(QStringLiteral("DialogoHistorial"));
    setWindowTitle(m_texto(2040).arg(asiID));
    auto *capa = new QVBoxLayout(this);
    if (filas.isEmpty())
        capa->addWidget(new QLabel(m_texto(2041), this));

    m_tabla = new QTableWidget(int(filas.size()), 4, this);
    m_tabla->setObjectName(QStringLiteral("tablaHistorial"));
    m_tabla->setHorizontalHeaderLabels({m_texto(2042), m_texto(2043), m_texto(2044), m_texto(2045)});
    m_tabla->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_tabla->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_tabla->setSelectionMode(QAbstractItemView::SingleSelection);
    m_tabla->verticalHeader()->hide();
    m_tabla->horizontalHeader()->setStretchLastSection(true);
    const QString formato = formatoFecha + QStringLiteral(" hh:mm:ss");
    for (int i = 0; i < filas.size(); ++i) {
        const HistorialAsiento::Fila &f = filas[i];
        const QString usuario = f.nombreUsuario.isEmpty() ? QString::number(f.usuario) : f.nombreUsuario;
        const QStringList cambios = HistorialAsiento::Diferencias(f.antes, f.despues, m_texto, m_libros);
        const QString resumen = f.antes.isEmpty() ? m_texto(2046).arg(f.despues.value(QStringLiteral("Lineas")).toArray().size())
                              : f.despues.isEmpty() ? m_texto(2047).arg(f.antes.value(QStringLiteral("Lineas")).toArray().size())
                                                    : cambios.join(QStringLiteral("; "));
        const QStringList celdas{f.momento.toString(formato), usuario, HistorialAsiento::NombreOperacion(f.operacion, m_texto), resumen};
        for (int c = 0; c < celdas.size(); ++c)
            m_tabla->setItem(i, c, new QTableWidgetItem(celdas[c]));
    }
    m_tabla->resizeColumnsToContents();
    capa->addWidget(m_tabla, 2);

    m_detalle = new QPlainTextEdit(this);
    m_detalle->setObjectName(QStringLiteral("detalleHistorial"));
    m_detalle->setReadOnly(true);
    capa->addWidget(m_detalle, 1);

    auto *botones = m_botones = new QDialogButtonBox(QDialogButtonBox::Close, this);
    botones->button(QDialogButtonBox::Close)->setText(m_texto(1165));
    // The list takes the keys from the start: arrows move through the writes, Escape closes.
    botones->button(QDialogButtonBox::Close)->setAutoDefault(false);
    connect(botones, &QDialogButtonBox::rejected, this, &QDialog::reject);
    capa->addWidget(botones);

    connect(m_tabla, &QTableWidget::currentCellChanged, this, [this](int fila) {
        mostrarDetalle(fila);
        if (m_restaurar)
            m_restaurar->setEnabled(restaurable(fila));
    });
    if (!filas.isEmpty())
        m_tabla->setCurrentCell(int(filas.size()) - 1, 0);
    setFocusProxy(m_tabla);
    resize(760, 420);
}

void DialogoHistorial::OfrecerRestaurar(const QString &caption, std::function<bool(const QJsonObject &)> restaurar)
{
    m_restaurarVersion = std::move(restaurar);
    m_restaurar = m_botones->addButton(caption, QDialogButtonBox::ActionRole);
    m_restaurar->setObjectName(QStringLiteral("botonRestaurarVersion"));
    m_restaurar->setAutoDefault(false);
    m_restaurar->setEnabled(restaurable(m_tabla->currentRow()));
    connect(m_restaurar, &QPushButton::clicked, this, [this] {
        const int fila = m_tabla->currentRow();
        if (restaurable(fila) && m_restaurarVersion(m_filas[fila].despues))
            accept();
    });
}

// A version that left a live entry, other than the entry as it stands now.
bool DialogoHistorial::restaurable(int fila) const
{
    if (fila < 0 || fila >= m_filas.size() - 1)
        return false;
    const QJsonObject &version = m_filas[fila].despues;
    return !version.isEmpty() && version.value(QStringLiteral("Estado")).toInt() != 9;
}

// The selected write: its changes in words, then the entry as it was before and after.
void DialogoHistorial::mostrarDetalle(int fila)
{
    if (fila < 0 || fila >= m_filas.size()) {
        m_detalle->clear();
        return;
    }
    const HistorialAsiento::Fila &f = m_filas[fila];
    QStringList texto = HistorialAsiento::Diferencias(f.antes, f.despues, m_texto, m_libros);
    auto version = [this](const QJsonObject &o, int sinNada) {
        return o.isEmpty() ? m_texto(sinNada) : HistorialAsiento::Version(o, m_texto, m_libros).join(QLatin1Char('\n'));
    };
    texto << QString() << m_texto(2048) << version(f.antes, 2050) << QString() << m_texto(2049) << version(f.despues, 2051);
    m_detalle->setPlainText(texto.join(QLatin1Char('\n')));
}
