// A call that throws has changed nothing. The tests run every public operation of every kind, with
// every allocation failing and every observer throwing.
#include "atomicity/Documents.h"
#include "atomicity/Driver.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <set>
#include <sstream>

using namespace kel::test;

namespace {

/// Returns the operations of the contract as "Class declaration".
std::set<std::string> operationsOfTheContract() {
    std::set<std::string> operations;
    std::ifstream file(KEL_SLOTS_FILE);
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        std::string owner;
        int slot = 0;
        if (line.starts_with('#') || !(words >> owner >> slot)) {
            continue;
        }
        std::string rest;
        std::getline(words >> std::ws, rest);
        operations.insert(owner + ' ' + rest.substr(0, rest.rfind(' '))); // without the version
    }
    return operations;
}

TEST(AtomicityTable, HasEveryOperationOfTheContractAndNoOther) {
    const std::set<std::string> contract = operationsOfTheContract();
    std::set<std::string> covered;
    for (const LeftOut& left : operationsLeftOut()) {
        const std::string operation = std::string(left.owner) + ' ' + left.operation;
        EXPECT_TRUE(contract.contains(operation)) << "unknown: " << operation;
        covered.insert(operation);
    }
    for (const Row& row : everyRow()) {
        const std::string operation = row.owner + ' ' + row.operation;
        if (row.owner != "exported function") {
            EXPECT_TRUE(contract.contains(operation)) << "unknown: " << operation;
            covered.insert(operation);
        }
    }
    EXPECT_GT(contract.size(), 350U);
    for (const std::string& operation : contract) {
        EXPECT_TRUE(covered.contains(operation)) << "missing: " << operation;
    }
}

/// Runs the rows of one class.
class Atomicity : public ::testing::TestWithParam<std::string> {
protected:
    static void TearDownTestSuite() {
        std::cout << "atomicity: " << tally.rows << " rows, " << operations.size()
                  << " operations, " << everyKind.size() << " kinds, " << tally.failedAllocations
                  << " allocations failed, " << tally.throwingObservers
                  << " calls with throwing observers\n";
        RecordProperty("rows", tally.rows);
        RecordProperty("operations", static_cast<int>(operations.size()));
        RecordProperty("failedAllocations", tally.failedAllocations);
        RecordProperty("throwingObservers", tally.throwingObservers);
    }

    inline static Tally tally;
    inline static std::set<std::string> operations;
};

std::set<std::string> owners() {
    std::set<std::string> names;
    for (const Row& row : everyRow()) {
        names.insert(row.owner);
    }
    return names;
}

INSTANTIATE_TEST_SUITE_P(Classes, Atomicity, ::testing::ValuesIn(owners()),
                         [](const auto& instance) {
                             std::string name = instance.param;
                             std::replace(name.begin(), name.end(), ' ', '_');
                             return name;
                         });

TEST_P(Atomicity, ACallThatThrowsHasChangedNothingOrAllAndToldEverybody) {
    for (const Row& row : everyRow()) {
        if (row.owner == GetParam()) {
            operations.insert(row.owner + row.operation);
            for (const std::string& complaint : complaintsAbout(row, tally)) {
                ADD_FAILURE() << row.name() << ": " << complaint;
            }
        }
    }
}

} // namespace
