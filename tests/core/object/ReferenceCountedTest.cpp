#include <gtest/gtest.h>

#include <thread>
#include <utility>
#include <vector>

#include "core/object/BasicClass.h"
#include "core/object/ClassRef.h"
#include "core/object/RootClass.h"

namespace {

class Counted : public core::BasicClass {
public:
    explicit Counted(bool& deleted) : deleted_(deleted) {}
    ~Counted() override { deleted_ = true; }
    void _addRefCalled(int count) override { seen.push_back(count); }
    void _releaseCalled(int count) override {
        seen.push_back(-count);
        objectAtRelease = reference != nullptr ? reference->Get() : nullptr;
    }

    std::vector<int> seen;
    core::ClassRef<Counted> const* reference = nullptr;
    Counted const* objectAtRelease = nullptr;

private:
    bool& deleted_;
};

TEST(ReferenceCounted, IsDeletedWithItsLastReference) {
    bool deleted = false;
    auto* object = new Counted(deleted);
    EXPECT_EQ(object->_release(), 0) << "without references a release changes nothing";
    ASSERT_FALSE(deleted);

    core::ClassRef<Counted> first(object);
    core::ClassRef<Counted> second(first);
    EXPECT_EQ(object->_getRefCount(), 2);
    second.Set(object);
    EXPECT_EQ(object->_getRefCount(), 2) << "setting the current object changes nothing";
    object->reference = &first;
    first.Set(nullptr);
    EXPECT_EQ(object->objectAtRelease, object) << "released before it is replaced";
    first.Set(nullptr);
    EXPECT_EQ(object->seen, (std::vector{1, 2, 3, -2, -1}));
    ASSERT_FALSE(deleted);
    second = nullptr;
    EXPECT_TRUE(deleted);
}

TEST(ReferenceCounted, CopiesWithoutReferencesAndDeletesAtOnce) {
    bool deleted = false;
    core::ClassRef<Counted> const original(new Counted(deleted));
    auto* copy = new Counted(*original);
    EXPECT_EQ(copy->_getRefCount(), 0) << "a copy has no references";
    core::_deferDeletion(static_cast<core::BasicClass*>(copy));
    EXPECT_TRUE(std::exchange(deleted, false));
    core::_deferDeletion(static_cast<core::ReferenceCounted*>(new Counted(deleted)));
    EXPECT_TRUE(std::exchange(deleted, false));
    EXPECT_EQ(
        std::string(original->ClassName()) + original.ClassName() + core::RootClass().ClassName(),
        "BasicClassClassRefRootClass");
}

TEST(ReferenceCounted, CountsOnSeveralThreads) {
    bool deleted = false;
    {
        core::ClassRef<Counted> shared(new Counted(deleted));
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([copy = shared] {
                for (int round = 0; round < 100'000; ++round) {
                    core::ClassRef<Counted> another;
                    another = copy;
                }
            });
        }
        threads.clear();
        EXPECT_EQ(shared->_getRefCount(), 1);
    }
    EXPECT_TRUE(deleted);
}

}  // namespace
