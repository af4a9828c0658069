// A call that throws has changed nothing. The tests run every public operation of every kind, with
// every allocation failing and every observer throwing.
#include "atomicity/Documents.h"
#include "atomicity/Driver.h"
#include "atomicity/MediaOperations.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <set>
#include <sstream>

using namespace kel::test;

namespace {

constexpr const char* exportedFunction = "exported function";

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

/// Returns the exported functions, without the types of their results.
std::set<std::string> exportedFunctions() {
    std::set<std::string> functions;
    std::ifstream file(KEL_EXPORTS_FILE);
    for (std::string line; std::getline(file, line);) {
        const std::size_t begin = line.find("| ");
        const std::size_t end = line.find(" | ", begin + 1);
        if (!line.starts_with('#') && end != std::string::npos) {
            const std::string declaration = line.substr(begin + 2, end - begin - 2);
            functions.insert(declaration.substr(declaration.find(' ') + 1));
        }
    }
    return functions;
}

TEST(AtomicityTable, HasEveryExportedFunctionAndNoOther) {
    const std::set<std::string> exported = exportedFunctions();
    std::set<std::string> covered;
    for (const Row& row : everyRow()) {
        if (row.owner == exportedFunction) {
            EXPECT_TRUE(exported.contains(row.operation)) << "unknown: " << row.operation;
            covered.insert(row.operation);
        }
    }
    EXPECT_GT(exported.size(), 30U);
    for (const std::string& function : exported) {
        EXPECT_TRUE(covered.contains(function)) << "missing: " << function;
    }
}

TEST(AtomicityTable, HasEveryOperationOfTheContractAndNoOther) {
    const std::set<std::string> contract = operationsOfTheContract();
    std::set<std::string> covered;
    for (const LeftOut& left : operationsLeftOut()) {
        const std::string operation = std::string(left.owner) + ' ' + left.operation;
        covered.insert(operation);
    }
    // The tests of media have those that consume input or write output.
    for (const MediaOperation& operation : inputOperations()) {
        covered.insert(std::string("KELInterface_InputStream_V1 ") + operation.operation);
    }
    for (const MediaOperation& operation : outputOperations()) {
        covered.insert(std::string("KELInterface_OutputStream_V1 ") + operation.operation);
    }
    for (const std::string& operation : covered) {
        EXPECT_TRUE(contract.contains(operation)) << "unknown: " << operation;
    }
    for (const Row& row : everyRow()) {
        const std::string operation = row.owner + ' ' + row.operation;
        if (row.owner != exportedFunction) {
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
