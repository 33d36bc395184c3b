#include "base/wide.h"
#include "instruction_sets.h"
#include "q_Mur/frame.h"

int iSin[8192];
int iCos[8192];
int iSqrt[8192];

void PrepareSinTable() {
    // pi to nine decimals over 8192: the excess over the true step decides on which side of a whole number the entries
    // near the quarter points fall.
    constexpr double step = 3.141592654 / 8192;
    static_assert(step == 0x1.921fb54524550p-12);

    qmur::atFullWidth([] {
        for (int i = 0; i < 8192; ++i) {
            const qmur::SineCosine angle = qmur::sineCosine(2 * i * static_cast<qmur::Wide>(step));
            // Rounding the products to double lets the entries at the quarter points reach 32768 exactly.
            iSin[i] = qmur::truncateToInt(static_cast<double>(angle.sine * 32768));
            iCos[i] = qmur::truncateToInt(static_cast<double>(angle.cosine * 32768));
            iSqrt[i] = qmur::truncateToInt(static_cast<double>(qmur::squareRoot(i) * 1024));
        }
    });
    qmur::useWidestInstructionSet();
}

void Init_qMur_GlobalData(HINSTANCE__ *, char *) {
    PrepareSinTable();
}
