#include <gtest/gtest.h>

#include <vector>

#include "Platform/Foundation/ClassLoad.h"
#include "Platform/Foundation/NSObject.h"

namespace quaverly {
namespace {

class Counted : public NSObject {
 public:
  explicit Counted(bool* gone = nullptr) : _gone(gone) {}
  int answer() { return 42; }

 private:
  ~Counted() override {
    if (_gone) *_gone = true;
  }
  bool* _gone;
};

class Immortal : public NSObject {
 public:
  NSObject* retain() override { return this; }
  void release() override {}
  size_t retainCount() const override { return SIZE_MAX; }
};

TEST(Ref, TheLastReferenceDestroysTheObject) {
  bool gone = false;
  {
    Ref<Counted> first = make<Counted>(&gone);
    EXPECT_EQ(first->retainCount(), 1U);
    {
      Ref<NSObject> second = first;
      EXPECT_EQ(first->retainCount(), 2U);
    }
    EXPECT_FALSE(gone);
  }
  EXPECT_TRUE(gone);
}

TEST(Ref, AnImmortalObjectOutlivesItsReferences) {
  static Immortal object;
  for (int i = 0; i < 3; ++i) Ref<Immortal>::adopt(&object);
  EXPECT_EQ(object.retainCount(), SIZE_MAX);
}

TEST(Unowned, ReadsAsNothingOnceItsObjectIsGone) {
  Ref<Counted> object = make<Counted>();
  const Unowned<Counted> delegate(object.get());
  EXPECT_EQ(delegate.get(), object.get());
  EXPECT_EQ(object->retainCount(), 1U);
  object = nullptr;
  EXPECT_EQ(delegate.get(), nullptr);
}

TEST(Send, AMessageToNothingDoesNothing) {
  EXPECT_EQ(send(make<Counted>(), &Counted::answer), 42);
  EXPECT_EQ(send(Ref<Counted>(), &Counted::answer), 0);
}

std::vector<std::string>& loaded() {
  static std::vector<std::string> names;
  return names;
}
struct Base {
  static void load() { loaded().push_back("Base"); }
};
struct Derived : Base {
  using Superclass = Base;
  static void load() { loaded().push_back("Derived"); }
};
// The subclass's hook comes first on purpose: its superclass must be loaded before it all the same.
const ClassLoadHook<Derived> derivedHook;
const ClassLoadHook<Base> baseHook;

TEST(ClassLoad, RunsEachHookOnceSuperclassFirst) {
  EXPECT_EQ(loaded(), (std::vector<std::string>{"Base", "Derived"}));
}

}  // namespace
}  // namespace quaverly
