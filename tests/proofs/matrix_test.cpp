#include "proofs.h"

#include <cstdlib>
#include <fstream>
#include <set>

namespace proofs {
namespace {

/// Prints the matrix of rows and proofs on the way, where a file for it is named.
TEST(matrix, every_row_with_a_twin_is_compared_with_it) {
    const char *path = std::getenv("Q_MUR_MATRIX");
    std::ofstream out(path ? path : "");
    out << "function";
    for (const Proof &proof : allProofs())
        out << "\t" << proof.name;
    out << "\n";
    catalogue::forEachRow([&out](const Row &row) {
        out << row.fullName();
        for (const Proof &proof : allProofs()) {
            const std::string_view reason = reasonAgainst(proof, row);
            out << "\t" << (reason.empty() ? "tested" : reason);
            // A row that can be computed again is computed again: no proof is waived for it but by its own nature.
            if (proof.name == agreesWithTwin.name && row.functions.twin) {
                EXPECT_EQ(reason, "") << row.fullName();
            }
        }
        out << "\n";
    });
}

TEST(matrix, every_waived_proof_exists_and_would_apply) {
    catalogue::forEachRow([](const Row &row) {
        for (const catalogue::Waiver &waiver : row.waived) {
            bool found = waiver.proof == "every proof";
#if defined(__wasm__) // where a program is one thread
            found = found || waiver.proof == "two_threads_on_separate_surfaces";
#endif
            for (const Proof &proof : allProofs())
                if (proof.name == waiver.proof) {
                    found = true;
                    EXPECT_EQ(proof.reasonAgainst(row), "") << row.fullName() << " waives " << proof.name << " idly";
                }
            EXPECT_TRUE(found) << row.fullName() << " waives " << waiver.proof;
            EXPECT_NE(waiver.reason, "") << row.fullName();
        }
    });
}

TEST(matrix, every_row_describes_each_parameter) {
    std::set<std::string> names;
    catalogue::forEachRow([&names](const Row &row) {
        EXPECT_EQ(row.functions.types.size(), row.arguments.size()) << row.fullName();
        EXPECT_FALSE(row.sentence.empty()) << row.fullName();
        EXPECT_TRUE(names.insert(row.fullName()).second) << row.fullName() << " stands twice";
        for (const Argument &argument : row.arguments) {
            EXPECT_TRUE(argument.of.empty() || row.argument(argument.of)) << row.fullName() << " " << argument.name;
        }
    });
}

} // namespace
} // namespace proofs
