#include "macho/file/exports.h"

#include <set>

#include "macho/file/layout.h"

namespace macho {
namespace {

constexpr std::string_view kTree = "the tree of exports";
constexpr std::size_t kLongestSymbol = 1024;

// A node of the tree, and the text on the way to it.
struct Node {
  std::uint64_t offset;
  std::string symbol;
};

void readTerminal(Reader& node, const std::string& symbol, Image& image) {
  const std::uint64_t flags = node.number();
  if ((flags & ~EXPORT_SYMBOL_FLAGS_WEAK_DEFINITION) != 0)
    node.fail("has an export of a kind that can't be loaded: " + symbol);
  const std::uint64_t address = node.number();
  if (address > image.size || image.segmentOf(static_cast<Address>(address), 1) == nullptr)
    node.fail("has an export that lies outside the image: " + symbol);
  image.exports.push_back({symbol, static_cast<Address>(address)});
}

class ExportTree {
 public:
  ExportTree(Bytes bytes, Image& image) : bytes_(bytes), image_(image) {}

  void read() {
    visit({0, ""});
    while (!waiting_.empty()) {
      const Node node = waiting_.back();
      waiting_.pop_back();
      readNode(node);
    }
  }

 private:
  void readNode(const Node& node) {
    const Bytes bytes = bytes_.subspan(static_cast<std::size_t>(node.offset));
    Reader reader(bytes, kTree);
    const std::uint64_t terminalSize = reader.number();
    if (terminalSize > bytes.size() - reader.position()) reader.fail("ends too early");
    const std::size_t end = reader.position() + static_cast<std::size_t>(terminalSize);
    if (terminalSize > 0) {
      readTerminal(reader, node.symbol, image_);
      if (reader.position() > end) reader.fail("has an export that is longer than it says");
    }
    Reader children(bytes.subspan(end), kTree);
    for (int count = children.byte(); count > 0; --count) {
      const std::string_view edge = children.text();
      if (node.symbol.size() + edge.size() > kLongestSymbol)
        children.fail("has a name that is too long");
      visit({children.number(), node.symbol + std::string(edge)});
    }
  }

  // A node that is met a second time belongs to a circle, or to two names.
  void visit(const Node& node) {
    const Reader stream(bytes_, kTree);
    if (node.offset >= bytes_.size()) stream.fail("has a branch that leads outside");
    if (!visited_.insert(node.offset).second) stream.fail("meets itself");
    waiting_.push_back(node);
  }

  Bytes bytes_;
  Image& image_;
  std::set<std::uint64_t> visited_;
  std::vector<Node> waiting_;
};

}  // namespace

void readExports(Bytes tree, Image& image) {
  if (!tree.empty()) ExportTree(tree, image).read();
}

}  // namespace macho
