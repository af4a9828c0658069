// Checked structs and descriptors as a host sees them: every operation, through the public classes.
#include "Host.h"

using namespace host;

namespace {

const std::string notRanged = "Not a ranged variable.";
const std::string notEnumerated = "Not an enumerated variable.";

template <class Action> std::string messageOf(const Action& action) {
    return thrownMessage<KELException>(action);
}

class MetaKelHost : public ::testing::Test {
protected:
    /// A descriptor of the Ints from 0 to 10.
    MetaKelHost() {
        rules->setType(KELKind_Int);
        rules->putInt("min", int32_t{0});
        rules->putInt("max", int32_t{10});
        descriptor->addVar("level", rules.get());
    }

    Held<MetaKelVarDescriptor> rules{CreateMetaKelVarDescriptor()};
    Held<MetaKelDescriptor> descriptor{CreateMetaKelDescriptor()};
    Held<MetaKel> meta{CreateMetaKel(descriptor.get())};
    const KEL_Struct& variables = *meta;
    Held<KEL_Int> three{CreateKELInt(3)}, seven{CreateKELInt(7)}, eleven{CreateKELInt(11)};
    Held<KEL_String> word{CreateKELString("word")};
};

// ---- Variable descriptors ----------------------------------------------------------------------

TEST_F(MetaKelHost, RangesOfAVariableDescriptor) {
    EXPECT_TRUE(rules->isRanged());
    EXPECT_FALSE(rules->isEnumerated());
    EXPECT_TRUE(rules->isValid(three.get()));
    EXPECT_FALSE(rules->isValid(eleven.get()));
    EXPECT_TRUE(rules->inRange(10));
    EXPECT_TRUE(rules->inRange(10.5));
    EXPECT_FALSE(rules->inRange(eleven.get()));
    rules->setRange(three.get(), seven.get());
    EXPECT_EQ(rules->getMin(), three.get());
    EXPECT_EQ(rules->getMax(), seven.get());
    rules->setRange(1, 2);
    rules->setRange(1.5, 2.5);
    EXPECT_EQ(rules->getMax()->toDouble(), 2.5);
    EXPECT_EQ(rules->getStruct()->getCount(), 3);
}

TEST_F(MetaKelHost, EnumerationsOfAVariableDescriptor) {
    const auto choice = hold(CreateMetaKelVarDescriptor());
    const auto allowed = hold(CreateKELArray());
    choice->addVar("enum", allowed.get());
    choice->setType(KELKind_String);
    choice->addEnumValue(true);
    choice->addEnumValue("a");
    choice->addEnumValue(1.5);
    choice->addEnumValue(int32_t{7});
    choice->addEnumValue(word.get());
    EXPECT_EQ(choice->getEnum(), allowed.get());
    EXPECT_EQ(allowed->getCount(), 5);
    EXPECT_TRUE(choice->inEnum(true) && choice->inEnum("a") && choice->inEnum(1.5) &&
                choice->inEnum(int32_t{7}) && choice->inEnum(word.get()));
    choice->removeEnumValue(true);
    choice->removeEnumValue("a");
    choice->removeEnumValue(1.5);
    choice->removeEnumValue(int32_t{7});
    choice->removeEnumValue(word.get());
    EXPECT_EQ(allowed->getCount(), 0);
    choice->addEnumerationList(word.get());
    choice->removeEnumerationList();
    EXPECT_FALSE(choice->isEnumerated());
}

TEST_F(MetaKelHost, DefaultsOfAVariableDescriptor) {
    rules->setDefault(three.get());
    EXPECT_FALSE(rules->hasDefault());
    rules->putInt("default", int32_t{1});
    rules->setDefault(true);
    rules->setDefault("x");
    rules->setDefault(1.5);
    rules->setDefault(int32_t{2});
    EXPECT_EQ(rules->getDefault()->toInt(), 2);
    rules->setDefault(three.get());
    EXPECT_EQ(rules->getDefault(), three.get());
    rules->removeDefault();
    EXPECT_EQ(rules->getDefault(), nullptr);
}

TEST_F(MetaKelHost, AdornmentsOfAVariableDescriptor) {
    rules->putString("preadorn", "");
    rules->putString("postadorn", "");
    rules->setPreadorn("about ");
    rules->setPostadorn(" dB");
    EXPECT_TRUE(rules->hasPreadorn() && rules->hasPostadorn());
    EXPECT_STREQ(rules->getPreadorn(), "about ");
    EXPECT_STREQ(rules->getPostadorn(), " dB");
    rules->setPreadorn(word.get());
    rules->setPostadorn(word.get());
    EXPECT_STREQ(rules->getPreadorn(), "word");
    EXPECT_STREQ(rules->getPostadorn(), "word");
    rules->removePreadorn();
    rules->removePostadorn();
    EXPECT_EQ(rules->getPreadorn(), nullptr);
    EXPECT_EQ(rules->getPostadorn(), nullptr);
}

TEST_F(MetaKelHost, HintsOfAVariableDescriptor) {
    EXPECT_TRUE(!rules->getWrapped() && rules->getInterpolated() && rules->getStepsize() == 1.0);
    rules->setWrapped(true);
    rules->setInterpolated(false);
    rules->setStepsize(0.5);
    EXPECT_TRUE(rules->hasWrapped() && rules->hasInterpolated() && rules->hasStepsize());
    EXPECT_TRUE(rules->getWrapped() && !rules->getInterpolated() && rules->getStepsize() == 0.5);
    rules->setWrapped(three.get());
    rules->setInterpolated(three.get());
    rules->setStepsize(int32_t{2});
    rules->setStepsize(three.get());
    EXPECT_TRUE(rules->getWrapped() && rules->getInterpolated() && rules->getStepsize() == 3.0);
    rules->removeWrapped();
    rules->removeInterpolated();
    rules->removeStepsize();
    EXPECT_FALSE(rules->hasWrapped() || rules->hasInterpolated() || rules->hasStepsize());
}

TEST_F(MetaKelHost, BetweenRangeAndEnumeration) {
    const auto half = hold(CreateKELDouble(0.5));
    rules->setType(KELKind_Double);
    rules->enumerationFromRange(half.get());
    EXPECT_EQ(rules->getEnum()->getCount(), 3);
    EXPECT_EQ(rules->getEnum()->getVar(1), half.get());
    rules->rangeFromEnumeration();
    EXPECT_TRUE(rules->isRanged());
    EXPECT_EQ(rules->getMax()->toInt(), 10);
}

TEST_F(MetaKelHost, TheTwoKindsThatADescriptorHas) {
    EXPECT_EQ(rules->getType(), KELKind_Int); // of the variable
    EXPECT_EQ(std::as_const(*rules).getType(), KELKind_MetaKelVarDescriptor);
    EXPECT_EQ(static_cast<KEL*>(rules.get())->getType(), KELKind_MetaKelVarDescriptor);
}

TEST_F(MetaKelHost, EveryMessageOfAVariableDescriptor) {
    const auto empty = hold(CreateMetaKelVarDescriptor());
    EXPECT_EQ(messageOf([&] { empty->getMin(); }), notRanged);
    EXPECT_EQ(messageOf([&] { empty->getMax(); }), notRanged);
    EXPECT_EQ(messageOf([&] { empty->setRange(1, 2); }), notRanged);
    EXPECT_EQ(messageOf([&] { empty->inRange(1); }), notRanged);
    EXPECT_EQ(messageOf([&] { empty->getEnum(); }), notEnumerated);
    EXPECT_EQ(messageOf([&] { empty->inEnum(1); }), notEnumerated);
    EXPECT_EQ(messageOf([&] { empty->addEnumValue(1); }), notEnumerated);
    EXPECT_EQ(messageOf([&] { empty->removeEnumValue(1); }), notEnumerated);
    EXPECT_EQ(messageOf([&] { rules->addEnumerationList(nullptr); }),
              "Can only add enumeration list to a KEL_String");
    rules->addVar("enum", nullptr);
    EXPECT_EQ(messageOf([&] { rules->removeEnumerationList(); }),
              "Can only remove enumeration list from a KEL_String");
}

// ---- Checked structs ---------------------------------------------------------------------------

TEST_F(MetaKelHost, KindsAndClasses) {
    EXPECT_EQ(meta->getType(), KELKind_MetaKel);
    EXPECT_EQ(descriptor->getType(), KELKind_MetaKelDescriptor);
    for (KEL* value : {static_cast<KEL*>(meta.get()), static_cast<KEL*>(descriptor.get()),
                       static_cast<KEL*>(rules.get())}) {
        EXPECT_NE(dynamic_cast<KEL_Struct*>(value), nullptr);
        EXPECT_NE(dynamic_cast<KEL_Observable*>(value), nullptr);
    }
    EXPECT_NE(dynamic_cast<MetaKelDescriptorInterface_V1*>(descriptor.get()), nullptr);
}

TEST_F(MetaKelHost, TheDescriptorOfAStruct) {
    const auto other = hold(CreateMetaKelDescriptor());
    EXPECT_EQ(meta->getDescriptor(), descriptor.get());
    meta->setDescriptor(other.get());
    meta->replaceDescriptor(descriptor.get());
    EXPECT_EQ(meta->getDescriptor(), descriptor.get());
    meta->removeDescriptor();
    EXPECT_EQ(meta->getDescriptor(), nullptr);
}

TEST_F(MetaKelHost, ValuesAreCheckedOnTheirWayIn) {
    meta->addVar("level", eleven.get());
    EXPECT_FALSE(meta->containsVar("level"));
    meta->addVar("level", three.get());
    meta->setVar("level", eleven.get());
    meta->setVarValue("level", eleven.get());
    EXPECT_EQ(variables.getVar("level"), three.get());
    meta->setVar("level", seven.get());
    EXPECT_EQ(variables.getVar("level"), seven.get());
    meta->clearVar("level");
    EXPECT_EQ(variables.getVar("level"), nullptr);
    EXPECT_EQ(thrownMessage<KELRenameException>([&] { meta->addVar("@x", three.get()); }),
              "Variable names beginning with '@' are reserved.");
}

TEST_F(MetaKelHost, GettingWithAndWithoutADefault) {
    EXPECT_EQ(messageOf([&] { meta->getVar("level"); }), "Variable not found.");
    EXPECT_EQ(messageOf([&] { variables.getVar("other"); }),
              "Variable not found and no descriptor.");
    rules->addVar("default", three.get());
    EXPECT_EQ(hold(meta->getVar("level")).get(), three.get());
    EXPECT_EQ(meta->getVar("level", false), three.get());
    EXPECT_FALSE(meta->containsVar("level"));
    EXPECT_EQ(meta->getVar("level", true), three.get());
    EXPECT_TRUE(meta->containsVar("level"));
}

TEST_F(MetaKelHost, DescribingAndAddingAtOnce) {
    const auto made = hold(CreateMetaKel(nullptr));
    const auto allowed = hold(CreateKELArray());
    allowed->addVar(seven.get());
    made->createVar("a", eleven.get(), rules.get());
    made->createVarWithType("b", three.get());
    made->createVarWithDefault("c", three.get(), seven.get());
    made->createVarWithEnum("d", seven.get(), allowed.get());
    EXPECT_EQ(made->getDescriptor()->getCount(), 4);
    EXPECT_FALSE(made->containsVar("a"));
    EXPECT_EQ(made->getInt("b") + made->getInt("c") + made->getInt("d"), 13);
}

TEST_F(MetaKelHost, ObserversAreToldOnceWithTheMetaValue) {
    Watcher watcher;
    meta->addObserver(&watcher);
    meta->addVar("level", three.get());
    meta->setVar("level", seven.get());
    meta->setVar("level", eleven.get());
    meta->createVarWithDefault("x", three.get(), seven.get());
    meta->setVarValue("level", three.get()); // in place
    meta->setInt("level", 5);
    seven->setValue(6); // by others
    meta->removeObserver(&watcher);
    EXPECT_EQ(watcher.told, std::vector<KEL*>(5, meta.get()));
}

TEST_F(MetaKelHost, GoesThroughTextWithItsDescriptor) {
    meta->addVar("level", three.get());
    const auto out = hold(CreateKELStringOutputStream());
    out->write(meta.get());
    const std::string text = out->getString();
    const auto in =
        hold(CreateKELStringInputStream(text.c_str(), static_cast<int32_t>(text.size())));
    const auto back = hold(in->read());
    ASSERT_TRUE(back->equalsValue(meta.get())) << text;
    auto& again = dynamic_cast<MetaKel&>(*back);
    again.setVar("level", eleven.get());
    EXPECT_EQ(again.getInt("level"), 3);
    JHashCode ours, theirs;
    EXPECT_EQ(again.getDescriptor()->getHashCode(theirs), descriptor->getHashCode(ours));
}

TEST_F(MetaKelHost, ComesFromTheFactoryByKind) {
    const auto manager = hold(CreateKELManager());
    for (const int32_t kind : {50, 51, 52}) {
        JHashCode identity;
        const auto made = hold(manager->createKel(kind, JHashCode(1, 2, 3, 4)));
        EXPECT_EQ(made->getType(), kind);
        EXPECT_EQ(made->getHashCode(identity), JHashCode(1, 2, 3, 4));
        EXPECT_EQ(dynamic_cast<KEL_Struct&>(*made).getCount(), 0);
    }
}

} // namespace
