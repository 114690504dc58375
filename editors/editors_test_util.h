// Helpers shared by the editors' tests: a window on the headless toolkit, a property bag that
// records the order of reads, and drawing records in a comparable form.
#ifndef TARNSHEETS_EDITORS_EDITORS_TEST_UTIL_H_
#define TARNSHEETS_EDITORS_EDITORS_TEST_UTIL_H_

#include <cstdio>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "tarnsheets/property_bag.h"
#include "tarnsheets/toolkit.h"
#include "toolkits/headless/headless_toolkit.h"

namespace tarnsheets {

// A property bag in memory that also notes every key read, in order.
class RecordingBag : public PropertyBag {
 public:
  Variant ReadProperty(const std::string& key, const Variant& default_value) const override {
    reads_.push_back(key);
    return bag_.ReadProperty(key, default_value);
  }
  void WriteProperty(const std::string& key, const Variant& value,
                     const Variant& default_value) override {
    writes_.push_back(key);
    bag_.WriteProperty(key, value, default_value);
  }
  Font ReadFontProperty(const std::string& key, const Font& default_value) const override {
    reads_.push_back(key);
    return bag_.ReadFontProperty(key, default_value);
  }
  void WriteFontProperty(const std::string& key, const Font& value,
                         const Font& default_value) override {
    writes_.push_back(key);
    bag_.WriteFontProperty(key, value, default_value);
  }

  MemoryPropertyBag& Store() { return bag_; }
  const std::vector<std::string>& Reads() const { return reads_; }
  const std::vector<std::string>& Writes() const { return writes_; }
  // The keys actually stored, in write order.
  std::vector<std::string> StoredKeys() const {
    std::vector<std::string> keys;
    for (const auto& [key, value] : bag_.Entries()) keys.push_back(key);
    return keys;
  }

 private:
  MemoryPropertyBag bag_;
  mutable std::vector<std::string> reads_;
  std::vector<std::string> writes_;
};

// A drawing operation in a form the tests compare: "line 0,0 0,825 #000000",
// "box 15,15 180,180 #80000005", "picture PictureClip1 7x7 at 45,45".
inline std::string Describe(const DrawOp& op) {
  std::ostringstream out;
  auto num = [](Twips v) {
    std::ostringstream s;
    s << v;
    return s.str();
  };
  char color[16];
  std::snprintf(color, sizeof color, "#%06X", static_cast<unsigned>(op.color));
  switch (op.kind) {
    case DrawOp::Kind::kLine:
      out << "line " << num(op.x1) << "," << num(op.y1) << " " << num(op.x2) << "," << num(op.y2)
          << " " << color;
      break;
    case DrawOp::Kind::kBox:
      out << "box " << num(op.x1) << "," << num(op.y1) << " " << num(op.x2) << "," << num(op.y2)
          << " " << color;
      break;
    case DrawOp::Kind::kPicture:
      out << "picture " << op.picture.id << " " << op.picture.width << "x" << op.picture.height
          << " at " << num(op.x1) << "," << num(op.y1);
      break;
  }
  return out.str();
}

inline std::vector<std::string> Ops(const HeadlessToolkit& toolkit, const Control& control) {
  std::vector<std::string> out;
  for (const DrawOp& op : toolkit.DrawOps(control)) out.push_back(Describe(op));
  return out;
}

}  // namespace tarnsheets

#endif  // TARNSHEETS_EDITORS_EDITORS_TEST_UTIL_H_
