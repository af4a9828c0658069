// The order of the operations of every interface. Hosts that were compiled long ago call them by
// their place: a place never changes.
#include "Host.h"

#include <cstddef>
#include <cstring>

namespace {

/// The place of a virtual operation, as the C++ ABI of all compilers but Microsoft's writes it into
/// a pointer to member: an offset into the table of functions, marked in its own lowest bit or in
/// the adjustment's.
template <class Operation> std::size_t slotOf(Operation operation) {
    std::ptrdiff_t words[2] = {};
    static_assert(sizeof operation == sizeof words);
    std::memcpy(words, &operation, sizeof words);
    const std::ptrdiff_t offset = (words[1] & 1) != 0 ? words[0] : words[0] - 1;
    return static_cast<std::size_t>(offset) / sizeof(void*);
}

/// Compares the places of operations with the order in which they are given, from 0 on.
template <class... Operations> void expectOrder(Operations... operations) {
    std::size_t expected = 0;
    for (const std::size_t slot : {slotOf(operations)...}) {
        EXPECT_EQ(slot, expected++);
    }
}

/// The same for classes whose destructor comes first: the places follow each other.
template <class First, class... Operations>
void expectConsecutive(First first, Operations... operations) {
    std::size_t expected = slotOf(first);
    for (const std::size_t slot : {slotOf(operations)...}) {
        EXPECT_EQ(slot, ++expected);
    }
}

/// Chooses one overload by its type.
template <class Signature, class Interface>
Signature Interface::*overload(Signature Interface::*operation) {
    return operation;
}

TEST(Slots, OfRefCount) {
    using I = KELInterface_RefCount_V1;
    expectOrder(&I::addRef, &I::release, &I::getHashCode, &I::getType, &I::getRefCount);
}

TEST(Slots, OfCasting) {
    using I = KELInterface_Casting_V1;
    expectOrder(&I::toBoolean, &I::toInt, &I::toSignedChar, &I::toUnsignedChar, &I::toShort,
                &I::toUnsignedShort, &I::toUnsignedInt, &I::toLong, &I::toUnsignedLong, &I::toInt64,
                &I::toUnsignedInt64, &I::toDouble, &I::toFloat, &I::toLongDouble, &I::toString,
                &I::toGuid, &I::freeString);
}

TEST(Slots, OfValues) {
    using I = KELInterface_V1;
    expectOrder(&I::copy, &I::assign, overload<bool(const KEL*) const, I>(&I::equals),
                overload<bool(const KEL*, const KEL*) const, I>(&I::equals), &I::assignConverted,
                &I::equalsValue, &I::getVersion);
}

TEST(Slots, OfObservables) {
    using I = KELInterface_Observable_V1;
    expectOrder(overload<void(JObserver*), I>(&I::addObserver),
                overload<void(KEL_Observer*), I>(&I::addObserver),
                overload<void(KEL_Observer*), I>(&I::removeObserver),
                overload<void(JObserver*), I>(&I::removeObserver));
    expectOrder(&KEL_Observer::update);
}

TEST(Slots, OfExceptions) {
    using I = KELInterface_Exception_V1;
    expectOrder(&I::getMessage, &I::getMessageText, &I::addRef, &I::release, &I::getRefCount);
}

TEST(Slots, OfScalars) {
    using Int = KELInterface_Int_V1;
    expectOrder(&Int::getValue, &Int::setValue, &Int::setBoolean, &Int::setInt, &Int::setDouble,
                &Int::setString, &Int::setguid);
    using Boolean = KELInterface_Boolean_V1;
    expectOrder(&Boolean::getValue, &Boolean::setValue, &Boolean::setBoolean, &Boolean::setInt,
                &Boolean::setDouble, &Boolean::setString, &Boolean::setguid);
    using Double = KELInterface_Double_V1;
    expectOrder(&Double::getValue, &Double::setValue, &Double::setBoolean, &Double::setInt,
                &Double::setDouble, &Double::setString, &Double::setguid);
    using String = KELInterface_String_V1;
    expectOrder(&String::getValue, &String::setValue, &String::setBoolean, &String::setInt,
                &String::setDouble, &String::setString, &String::setguid, &String::getChar);
    using Guid = KELInterface_guid_V1;
    expectOrder(&Guid::getValue, &Guid::setValue, &Guid::setBoolean, &Guid::setInt,
                &Guid::setDouble, &Guid::setString, &Guid::setguid);
}

TEST(Slots, OfMemoryBlocks) {
    using I = KELInterface_MemBlock_V1;
    expectOrder(&I::read, &I::write, &I::getSize);
}

TEST(Slots, OfArrays) {
    using I = KELInterface_Array_V1;
    expectOrder(
        overload<KEL*(int32_t), I>(&I::getVar), overload<KEL*(int32_t) const, I>(&I::getVar),
        &I::getBoolean, &I::getInt, &I::getDouble, &I::getString, &I::getguid, &I::insertVar,
        &I::setVar, &I::setString, &I::setguid, overload<void(int32_t, float), I>(&I::setDouble),
        overload<void(int32_t, double), I>(&I::setDouble),
        overload<void(int32_t, long), I>(&I::setInt),
        overload<void(int32_t, unsigned long), I>(&I::setInt),
        overload<void(int32_t, int32_t), I>(&I::setInt), &I::setBoolean, &I::setVarValue,
        &I::swapVars, &I::addString, &I::addguid, overload<int32_t(float), I>(&I::addDouble),
        overload<int32_t(double), I>(&I::addDouble), overload<int32_t(long), I>(&I::addInt),
        overload<int32_t(unsigned long), I>(&I::addInt), overload<int32_t(int32_t), I>(&I::addInt),
        &I::addBoolean, &I::addVar, &I::addVars, &I::removeVar, &I::containsVar, &I::indexOfVar,
        &I::getCount, &I::removeAllVars);
}

TEST(Slots, OfStructs) {
    using I = KELInterface_Struct_V1;
    using Name = const char*;
    expectOrder(
        overload<KEL*(Name), I>(&I::getVar), overload<KEL*(Name) const, I>(&I::getVar),
        &I::getBoolean, &I::getInt, &I::getDouble, &I::getString, &I::getguid, &I::putString,
        &I::putguid, overload<void(Name, float), I>(&I::putDouble),
        overload<void(Name, double), I>(&I::putDouble), overload<void(Name, long), I>(&I::putInt),
        overload<void(Name, unsigned long), I>(&I::putInt),
        overload<void(Name, int32_t), I>(&I::putInt), &I::putBoolean, &I::addVar, &I::addVars,
        &I::removeVar, &I::setVar, &I::setString, &I::setguid,
        overload<void(Name, float), I>(&I::setDouble),
        overload<void(Name, double), I>(&I::setDouble), overload<void(Name, long), I>(&I::setInt),
        overload<void(Name, unsigned long), I>(&I::setInt),
        overload<void(Name, int32_t), I>(&I::setInt), &I::setBoolean, &I::setVarValue,
        &I::containsVar, &I::getVarNames, &I::removeAllVars, &I::getCount, &I::renameVar);
}

TEST(Slots, OfManagers) {
    using I = KELInterface_Manager_V1;
    expectOrder(&I::containsKel, &I::addKel, overload<KEL_Impl*(JHashCode) const, I>(&I::getKel),
                overload<KEL*(JHashCode), I>(&I::getKel), &I::removeKel, &I::removeAllKels,
                &I::size, overload<KEL*(int32_t), I>(&I::createKel),
                overload<KEL*(int32_t, JHashCode), I>(&I::createKel));
}

TEST(Slots, OfStringEnumerations) {
    using I = StringEnumerationInterface_V1;
    expectOrder(&I::hasMoreElements, &I::nextElement, &I::getCount, &I::reset, &I::contains,
                &I::addAll, &I::add, &I::addRef, &I::release, &I::getHashCode, &I::getRefCount,
                &I::remove);
}

TEST(Slots, OfTheRuntime) {
    expectConsecutive(&JObject::equals, &JObject::getHashCode, &JObject::getRefCount);
    using P = JPointer<JObject>;
    expectConsecutive(&P::clear, &P::detach, overload<bool(), P>(&P::isNull),
                      overload<bool() const, P>(&P::isNull), &P::isValid,
                      overload<P&(const P&), P>(&P::operator=),
                      overload<P&(JObject*), P>(&P::operator=), &P::get);
    expectConsecutive(&JException::getMessage, &JException::getMessageString);
    using S = JString;
    expectConsecutive(overload<bool(const char*) const, S>(&S::equals), &S::length,
                      overload<JString*(uint32_t, uint32_t) const, S>(&S::substring),
                      overload<JString*(uint32_t) const, S>(&S::substring),
                      overload<void(char), S>(&S::append),
                      overload<void(const char*), S>(&S::append),
                      overload<void(const JString&), S>(&S::append), &S::getChar);
}

} // namespace
