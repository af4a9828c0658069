#include "atomicity/Documents.h"

namespace kel::test {

Table everyRow() {
    Table table;
    addEveryKindRows(table);
    addScalarRows(table);
    addArrayRows(table);
    addStructRows(table);
    addManagerRows(table);
    addIndexListRows(table);
    addSelectorRows(table);
    addCheckedStructRows(table);
    addDescriptorRows(table);
    addRuntimeRows(table);
    addStreamRows(table);
    addFactoryRows(table);
    return table;
}

const std::vector<LeftOut>& operationsLeftOut() {
    static const std::vector<LeftOut> operations{
        {"KEL_Observer", "void update(KEL* value)", "the host implements it"},
    };
    return operations;
}

} // namespace kel::test
