#include "dialogopapelera.h"


#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

DialogoPapelera::DialogoPapelera(ComandosRestauracion &comandos, const std::function<QString(int)> &texto, const QString &formatoFecha,
                                 QWidget *padre)
    : QDialog(padre)
    , m_comandos(comandos)
    , m_texto(texto)
    , m_formatoFecha(formatoFecha)
{
    setObjectName(QStringLiteral("DialogoPapelera"));
    setWindowTitle(m_texto(1156));
    auto *capa = new QVBoxLayout(this);
    m_vacia = new QLabel(m_texto(1166), this);
    capa->addWidget(m_vacia);

    m_tabla = new QTableWidget(0, 4, this);
    m_tabla->setObjectName(QStringLiteral("tablaPapelera"));
    m_tabla->setAccessibleName(m_texto(1156));
    m_tabla->setHorizontalHeaderLabels({m_texto(1161), m_texto(1162), m_texto(1163), m_texto(1164)});
    m_tabla->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_tabla->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_tabla->setSelectionMode(QAbstractItemView::SingleSelection);
    m_tabla->setTabKeyNavigation(false);
    m_tabla->verticalHeader()->hide();
    m_tabla->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    capa->addWidget(m_tabla);

    auto *botones = new QDialogButtonBox(this);
    m_restaurar = botones->addButton(m_texto(1157), QDialogButtonBox::ActionRole);
    m_restaurar->setObjectName(QStringLiteral("botonRestaurar"));
    m_eliminar = botones->addButton(m_texto(1158), QDialogButtonBox::DestructiveRole);
    m_eliminar->setObjectName(QStringLiteral("botonEliminarDefinitivo"));
    QPushButton *cerrar = botones->addButton(m_texto(1165), QDialogButtonBox::RejectRole);
    // Enter on the list gives the selected entry back; Escape closes.
    for (QPushButton *b : {m_restaurar, m_eliminar, cerrar})
        b->setAutoDefault(false);
    m_restaurar->setDefault(true);
    capa->addWidget(botones);

    connect(m_restaurar, &QPushButton::clicked, this, [this] {
        if (const auto *e = elegido(); e && m_comandos.RestaurarDePapelera(*e))
            Leer();
    });
    connect(m_eliminar, &QPushButton::clicked, this, [this] {
        if (const auto *e = elegido(); e && m_comandos.EliminarDePapelera(*e))
            Leer();
    });
    connect(botones, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_tabla, &QTableWidget::currentCellChanged, this, [this] { actualizarBotones(); });
    setFocusProxy(m_tabla);
    resize(720, 380);
}

bool DialogoPapelera::Leer()
{
    const int antes = m_tabla->currentRow();
    const auto lista = m_comandos.Papelera();
    if (!lista)
        return false;
    m_lista = *lista;
    m_tabla->setRowCount(int(m_lista.size()));
    const QString formato = m_formatoFecha + QStringLiteral(" hh:mm");
    for (int i = 0; i < m_lista.size(); ++i) {
        const ComandosRestauracion::EnPapelera &e = m_lista[i];
        const QStringList celdas{e.fecha.toString(m_formatoFecha), e.leyenda, e.enviadoPor, e.enviadoEl.toString(formato)};
        for (int c = 0; c < celdas.size(); ++c)
            m_tabla->setItem(i, c, new QTableWidgetItem(celdas[c]));
    }
    m_tabla->resizeColumnToContents(0);
    m_tabla->resizeColumnToContents(2);
    m_tabla->resizeColumnToContents(3);
    m_vacia->setVisible(m_lista.isEmpty());
    m_tabla->setVisible(!m_lista.isEmpty());
    if (!m_lista.isEmpty())
        m_tabla->setCurrentCell(std::clamp(antes, 0, int(m_lista.size()) - 1), 0);
    actualizarBotones();
    return true;
}

const ComandosRestauracion::EnPapelera *DialogoPapelera::elegido() const
{
    const int fila = m_tabla->currentRow();
    return fila >= 0 && fila < m_lista.size() ? &m_lista[fila] : nullptr;
}

void DialogoPapelera::actualizarBotones()
{
    m_restaurar->setEnabled(elegido() != nullptr);
    m_eliminar->setEnabled(elegido() != nullptr);
}
