#include "support/SameTree.h"

#include "runtime/Text.h"
#include "values/ChildCursor.h"
#include "values/KEL_MemBlock_Impl.h"

#include <bit>
#include <cstring>
#include <unordered_map>
#include <vector>

namespace kel::test {

namespace {

bool sameBytes(const KEL_Impl& a, const KEL_Impl& b) {
    const auto& x = dynamic_cast<const KEL_MemBlock_Impl&>(a);
    const auto& y = dynamic_cast<const KEL_MemBlock_Impl&>(b);
    return x.getSize() == y.getSize() &&
           std::memcmp(x.bytes(), y.bytes(), static_cast<std::size_t>(x.getSize())) == 0;
}

bool sameDoubles(double a, double b, Kept kept) {
    char text[2][doubleTextSize];
    return kept == Kept::inBinary ? std::bit_cast<uint64_t>(a) == std::bit_cast<uint64_t>(b)
                                  : std::string_view(text[0], formatDouble(text[0], a)) ==
                                        std::string_view(text[1], formatDouble(text[1], b));
}

bool sameContents(const KEL_Impl& a, const KEL_Impl& b, Kept kept) {
    switch (a.kind()) {
    case KELKind_Int:
    case KELKind_Boolean:
        return a.toInt() == b.toInt();
    case KELKind_Double:
        return sameDoubles(a.toDouble(), b.toDouble(), kept);
    case KELKind_guid:
    case KELKind_String:
        return std::strcmp(a.toString(), b.toString()) == 0;
    case KELKind_MemBlock:
        return sameBytes(a, b);
    case KELKind_Array:
    case KELKind_Struct:
    case KELKind_Manager:
    case KELKind_Selector:
    case KELKind_MultiSelector:
    case KELKind_IndexList:
    case KELKind_MetaKel:
    case KELKind_MetaKelDescriptor:
    case KELKind_MetaKelVarDescriptor:
        break; // its children are compared
    }
    return true;
}

class Comparison {
public:
    explicit Comparison(Kept kept) : kept_(kept) {}

    std::string run(const KEL_Impl& a, const KEL_Impl& b) {
        std::string difference = meet(a, b);
        while (difference.empty() && !levels_.empty()) {
            difference = next();
        }
        return difference;
    }

private:
    struct Level {
        ChildCursor a;
        ChildCursor b;
    };

    std::string next() {
        Level& level = levels_.back();
        const bool more = level.a.next();
        if (more != level.b.next()) {
            return "different numbers of children";
        }
        if (!more) {
            levels_.pop_back();
            return {};
        }
        if (level.a.name != level.b.name) {
            return std::string("names ").append(level.a.name).append(" and ").append(level.b.name);
        }
        const KEL_Impl* x = level.a.value;
        const KEL_Impl* y = level.b.value;
        if (x == nullptr || y == nullptr) {
            return x == y ? std::string()
                          : std::string("null and a value at ").append(level.a.name);
        }
        return meet(*x, *y);
    }

    std::string meet(const KEL_Impl& a, const KEL_Impl& b) {
        const auto [there, isNew] = partners_.emplace(&a, &b);
        const bool isNewBack = back_.emplace(&b, &a).second;
        if (!isNew || !isNewBack) {
            const bool same = there->second == &b && back_[&b] == &a;
            return same ? std::string() : std::string("another sharing");
        }
        if (a.getType() != b.getType()) {
            return "kinds " + std::to_string(a.getType()) + " and " + std::to_string(b.getType());
        }
        if (kept_ == Kept::inBinary && a.identity() != b.identity()) {
            return "another identity";
        }
        if (!sameContents(a, b, kept_)) {
            return "other contents in kind " + std::to_string(a.getType());
        }
        if (a.isContainer()) {
            levels_.push_back({ChildCursor(a), ChildCursor(b)});
        }
        return {};
    }

    Kept kept_;
    std::vector<Level> levels_;
    std::unordered_map<const KEL_Impl*, const KEL_Impl*> partners_;
    std::unordered_map<const KEL_Impl*, const KEL_Impl*> back_;
};

} // namespace

std::string differenceOf(const KEL_Impl& a, const KEL_Impl& b, Kept kept) {
    return Comparison(kept).run(a, b);
}

} // namespace kel::test
