#include "KeyboardShortcuts/ObjectAssociation.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace vistrel::KeyboardShortcuts {
namespace {

TEST(ObjectAssociationTest, HoldsValuesAsThePolicySays) {
  struct {
    AssociationPolicy policy;
    std::uintptr_t number;
    long holders;
  } const rows[] = {{AssociationPolicy::assign, 0, 1},
                    {AssociationPolicy::retainNonatomic, 1, 2},
                    {AssociationPolicy::copyNonatomic, 3, 1},
                    {AssociationPolicy::retain, 769, 2},
                    {AssociationPolicy::copy, 771, 1}};
  NSObject object;
  for (const auto& row : rows) {
    EXPECT_EQ(platformPolicy(row.policy), row.number);
    const ObjectAssociation<std::string> association(row.policy);
    const ObjectAssociation<std::string> other(row.policy);
    const auto value = std::make_shared<std::string>("value");
    association.attach(object, value);
    EXPECT_EQ(value.use_count(), row.holders);
    EXPECT_EQ(*std::static_pointer_cast<std::string>(object.associatedObject(&association)), "value");
    EXPECT_EQ(object.associatedObject(&other), nullptr);
    association.attach(object, std::make_shared<std::string>("newer"));
    EXPECT_EQ(value.use_count(), 1);
    association.attach(object, nullptr);
    EXPECT_EQ(object.associatedObject(&association), nullptr);
  }
}

}  // namespace
}  // namespace vistrel::KeyboardShortcuts
