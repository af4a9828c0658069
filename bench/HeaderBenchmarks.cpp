#include "Benchmarks.h"
#include "Measure.h"

#include <kel/kel.hpp>

namespace bench {

namespace {

constexpr int32_t callCount = 100;

/// Measures a call through kel.hpp beside the raw calls that do the same.
template <class Header, class Raw>
void addPair(const char* what, const Header& header, const Raw& raw) {
    const auto repeated = [](const auto& call) {
        return [call](benchmark::State& state) {
            const kel::value room =
                kel::object({{"name", "Kitchen"}, {"degrees", 19.5}, {"windows", 2}, {"doors", 1}});
            kel::value handle = room;
            KEL_Struct* fields = handle.as<KEL_Struct>().get();
            measureWork(state, callCount, [&] {
                int64_t sum = 0;
                for (int32_t i = 0; i < callCount; ++i) {
                    sum += call(handle, *fields, i);
                }
                return sum;
            });
        };
    };
    add("header", "KEL", what, repeated(header));
    add("header", "raw", what, repeated(raw));
}

} // namespace

void registerHeaderBenchmarks() {
    addPair(
        "read", [](kel::value& room, KEL_Struct&, int32_t) { return room["windows"].get<int>(); },
        [](kel::value&, KEL_Struct& fields, int32_t) {
            try { // which a host needs for an unknown name
                KEL* found = static_cast<const KEL_Struct&>(fields).getVar("windows");
                return found != nullptr && found->getType() == KELKind_Int ? found->toInt() : -1;
            } catch (KELException* failure) {
                DeleteKELException(failure);
                return -1;
            }
        });
    addPair(
        "put",
        [](kel::value& room, KEL_Struct&, int32_t i) {
            room["windows"] = i;
            return i;
        },
        [](kel::value&, KEL_Struct& fields, int32_t i) {
            fields.putInt("windows", i);
            return i;
        });
    addPair(
        "assign",
        [](kel::value& room, KEL_Struct&, int32_t i) {
            room["windows"].assign(i);
            return i;
        },
        [](kel::value&, KEL_Struct& fields, int32_t i) {
            fields.setInt("windows", i);
            return i;
        });
    addPair(
        "make_and_release",
        [](kel::value&, KEL_Struct&, int32_t i) { return kel::value(i).raw() == nullptr ? 1 : 0; },
        [](kel::value&, KEL_Struct&, int32_t i) {
            KEL* made = CreateKELInt(i);
            const int result = made == nullptr ? 1 : 0;
            DeleteKEL(made);
            return result;
        });
}

} // namespace bench
