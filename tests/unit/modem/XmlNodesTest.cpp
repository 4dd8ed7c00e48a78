// Walks over the nodes of an XML document that refuses.

#include "modem/XmlNodes.h"

#include <gtest/gtest.h>

#include "tests/unit/platform/DomRecorders.h"

namespace stelvane {
namespace {

class NodeWithoutText final : public platform_test::XMLDOMNodeRecorder<> {
 public:
  HRESULT STDMETHODCALLTYPE get_text(BSTR* text) override {
    *text = nullptr;
    return E_ACCESSDENIED;
  }
};

TEST(XmlNodes, ATextThatCannotBeReadLeavesWhatWasReadBefore) {
  NodeWithoutText node;
  std::string text = "read before";
  EXPECT_EQ(NodeText(&node, text), E_ACCESSDENIED);
  EXPECT_EQ(text, "read before");
}

}  // namespace
}  // namespace stelvane
