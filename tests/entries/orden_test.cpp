#include "fixtureasientos.h"

#include "entries/vistas.h"

#include <QRandomGenerator>

#include <gtest/gtest.h>

namespace {

// The suite's exchange sort, step by step: the reference the fast order must match.
std::vector<int> ordenDeIntercambio(const std::vector<ClaveOrden> &filas, quint8 modo)
{
    std::vector<int> orden(filas.size());
    for (size_t i = 0; i < orden.size(); ++i)
        orden[i] = int(i);
    for (size_t r = 0; r + 1 < orden.size();) {
        if (FueraDeOrden(filas[size_t(orden[r])], filas[size_t(orden[r + 1])], modo)) {
            std::swap(orden[r], orden[r + 1]);
            r = 0;
        } else {
            ++r;
        }
    }
    return orden;
}

// Rows as OrdenarCuentas makes them: a debit row has text in column 0, a credit row in
// column 1; with conBlancos some rows have text in neither (an account whose code and name
// are blank, a line still being typed), which OrdenarCuentas takes as not at the debit.
std::vector<ClaveOrden> filasAlAzar(QRandomGenerator &azar, int n, bool conDiferencia, bool conBlancos = false)
{
    static const char *const cuentas[] = {"1.1.01 - Caja", "1.1.02 - banco", "1.1.02 - Banco", "2.1.01 - Proveedores",
                                          "4.1 - Ventas", "5.3.01 - Alquileres", "a - cuenta", "B - cuenta"};
    std::vector<ClaveOrden> filas;
    for (int i = 0; i < n; ++i) {
        ClaveOrden k;
        k.alDebe = azar.bounded(2) == 0;
        const QString texto = QString::fromLatin1(cuentas[azar.bounded(8)]);
        (k.alDebe ? k.texto0 : k.texto1) = texto;
        k.orden = int(azar.bounded(6));
        if (conBlancos && azar.bounded(4) == 0) {
            k.texto0.clear();
            k.texto1.clear();
            k.alDebe = false;
        }
        filas.push_back(k);
    }
    if (conDiferencia && n > 0) {
        ClaveOrden &d = filas[size_t(azar.bounded(n))];
        d.esDiferencia = true;
        d.orden = 999;
        d.texto0.clear();
        d.texto1.clear();
        (d.alDebe ? d.texto0 : d.texto1) = QStringLiteral("................?");
    }
    return filas;
}

TEST(OrdenCuentas, IgualAlOrdenDeIntercambioEnAmbosModosConYSinBlancos)
{
    QRandomGenerator azar(20261123);
    for (bool conBlancos : {false, true}) {
        for (int vuelta = 0; vuelta < 3000; ++vuelta) {
            const auto filas = filasAlAzar(azar, int(azar.bounded(conBlancos ? 20 : 12)), azar.bounded(2) == 0, conBlancos);
            for (quint8 modo : {quint8(0), quint8(1)})
                ASSERT_EQ(OrdenCuentas(filas, modo), ordenDeIntercambio(filas, modo)) << "vuelta " << vuelta << " modo " << int(modo);
        }
    }
}

// Worked cases with their expected order, checked against the exchange sort too.
TEST(OrdenCuentas, UnaFilaEnBlancoSeparaLasCuentasAlHaberYUnaCuentaQuedaEnElOrdenDeIngreso)
{
    auto fila = [](const char *texto0, const char *texto1, int orden = 0) {
        ClaveOrden k;
        k.texto0 = QString::fromLatin1(texto0);
        k.texto1 = QString::fromLatin1(texto1);
        k.alDebe = !k.texto0.isEmpty();
        k.orden = orden;
        return k;
    };
    struct Caso
    {
        std::vector<ClaveOrden> filas;
        std::vector<int> orden;
    };
    const Caso casos[] = {
        // No credit row passes the blank one: "X" stays above it, "A" below.
        {{fila("", "X - cuenta"), fila("", ""), fila("", "A - cuenta")}, {0, 1, 2}},
        // A debit row passes everything that is not at the debit.
        {{fila("", "X - cuenta"), fila("", ""), fila("Caja", "")}, {2, 0, 1}},
        // Each group between blank rows is ordered on its own.
        {{fila("", "Z"), fila("", "Y"), fila("", ""), fila("", "C"), fila("", "B"), fila("Caja", "")}, {5, 1, 0, 2, 4, 3}},
        // A sort would carry "C" above the blank rows and "d", since it is less than "d".
        {{fila("", "d"), fila("", ""), fila("", ""), fila("b", ""), fila("", "C"), fila("", "d")}, {3, 0, 1, 2, 4, 5}},
        // Lines of one account keep the order they were entered in, whatever order the
        // database hands them in: the same entry reads alike in every view and engine.
        {{fila("5.3.14 - Amortizaciones", "", 3), fila("5.3.14 - amortizaciones", "", 1), fila("", "1.4.04 - Amortizaciones acumuladas", 5),
          fila("5.3.14 - Amortizaciones", "", 2), fila("", "1.4.04 - Amortizaciones acumuladas", 4)},
         {1, 3, 0, 4, 2}},
    };
    for (const Caso &c : casos) {
        EXPECT_EQ(ordenDeIntercambio(c.filas, 0), c.orden);
        EXPECT_EQ(OrdenCuentas(c.filas, 0), c.orden);
    }
}

// An opening-balance entry may have thousands of lines, where the exchange sort would need
// millions of restarts; with blank rows the exchange sort's own way is taken. Either way it
// ends within the test's time, and ordered.
TEST(OrdenCuentas, MilesDeLineasNoTardanComoUnIntercambio)
{
    QRandomGenerator azar(7);
    for (bool blancos : {false, true}) {
        const auto filas = filasAlAzar(azar, 5000, blancos, blancos);
        const auto orden = OrdenCuentas(filas, 0);
        for (size_t i = 0; i + 1 < orden.size(); ++i)
            ASSERT_FALSE(FueraDeOrden(filas[size_t(orden[i])], filas[size_t(orden[i + 1])], 0)) << blancos;
    }
}

} // namespace
