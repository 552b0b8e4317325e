// Sequences of calls on lists, their enumerators, variants, strings and keyed sets, held to the
// containers of the standard library. An input is calls: a byte that selects one, and its
// arguments.
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/list.h"
#include "core/param_value.h"
#include "fuzz/input.h"
#include "standin/odrx/alloc_control.h"

namespace {

using namespace ulm::fuzz;

struct Released {
  void operator()(IQLUnknown* object) const { object->Release(); }
};
template <class T>
using Held = std::unique_ptr<T, Released>;

// A list with its enumerators. The model is the texts, and an index for each enumerator.
class Lists {
 public:
  void call(Input& input) {
    switch (input.u8() % 8) {
      case 0:
      case 1: {
        const bool null = input.u8() == 0;
        const std::string text = input.text(input.take(input.u8() % 9)).c_str();
        require(list_->AddTail(null ? nullptr : text.c_str()) != nullptr, "a node");
        texts_.push_back(null ? std::nullopt : std::optional(text));
        break;
      }
      case 2:
        if (walks_.size() < 8)
          walks_.push_back({Held<CTEnum<const char*>>(list_->GetEnum()), false, {}});
        break;
      case 3:
        if (!walks_.empty())
          walks_.erase(walks_.begin() + input.u8() % static_cast<int>(walks_.size()));
        break;
      default:
        if (!walks_.empty()) step(walks_[input.u8() % walks_.size()], input);
    }
    require(list_->GetCount() == texts_.size(), "the count of a list");
  }

 private:
  struct Walk {
    Held<CTEnum<const char*>> over;
    bool started = false;
    std::optional<std::size_t> at;  // nothing after the tail, where only a reset helps
  };

  void step(Walk& walk, Input& input) {
    const std::uint32_t count = input.u8() % 5;
    const std::uint8_t kind = input.u8() % 4;
    if (kind == 0 || !walk.started) {  // the first call starts at the head of that moment
      walk.started = true;
      walk.at = texts_.empty() ? std::nullopt : std::optional<std::size_t>(0);
    }
    if (kind == 0) return walk.over->Reset();
    const std::size_t first = walk.at.value_or(texts_.size());
    const std::size_t end = std::min<std::size_t>(first + count, texts_.size());
    walk.at = end == texts_.size() ? std::nullopt : std::optional(end);
    if (kind == 1) {
      require((walk.over->Skip(count) != 0) == walk.at.has_value(), "a skip that leaves a value");
      return;
    }
    std::vector<const char*> values(count);
    std::uint32_t fetched = 99;
    require((walk.over->Next(count, values.data(), &fetched) != 0) == (end != first),
            "a call that fetches a value");
    require(fetched == end - first, "the number that is fetched");
    for (std::uint32_t i = 0; i < fetched; ++i) {
      const auto& text = texts_[first + i];
      require(text ? values[i] != nullptr && *text == values[i] : values[i] == nullptr,
              "the values in their order");
    }
  }

  Held<CTListEnum<const char*, const char*>> list_{
      ulm::glue::makeObject<CTListEnum<const char*, const char*>>()};
  std::vector<std::optional<std::string>> texts_;
  std::vector<Walk> walks_;
};

// A keyed set. The model is the keys in their order, each with a text or a number.
class Sets {
 public:
  void call(Input& input) {
    const std::string key(1, static_cast<char>('a' + input.u8() % 6));
    const std::string text = input.text(input.take(input.u8() % 9)).c_str();
    const auto number = static_cast<int>(input.u32());
    const auto found = std::find_if(model_.begin(), model_.end(),
                                    [&](const Entry& entry) { return entry.key == key; });
    switch (input.u8() % 8) {
      case 0:
        Param_SetValue(set_.get(), key.c_str(), number);
        put(found, {key, {}, number});
        break;
      case 1:
        Param_SetValue(set_.get(), key.c_str(), text.c_str());
        put(found, {key, text, 0});
        break;
      case 2:
        Param_SetValue(set_.get(), key.c_str(), CXString(text.c_str()));
        put(found, {key, text, 0});
        break;
      case 3:
        require((set_->RemoveKey(key.c_str()) != 0) == (found != model_.end()), "a removal");
        if (found != model_.end()) model_.erase(found);
        break;
      case 4:
        if (number % 16 == 0) {
          set_->RemoveAll();
          model_.clear();
        }
        break;
      case 5: {  // a value of the set goes to another of its keys
        CQLVariant value;
        if (found != model_.end()) {
          require(set_->GetValue(key.c_str(), &value) != 0, "a stored value");
          set_->SetValue("a", &value);
          Entry copy = *found;
          copy.key.assign(1, 'a');
          put(std::find_if(model_.begin(), model_.end(),
                           [](const Entry& entry) { return entry.key == "a"; }),
              copy);
        }
        break;
      }
      default: {
        int whole = -1;
        CXString narrow("before");
        const bool isText = found != model_.end() && found->text;
        require((Param_GetValue(set_.get(), key.c_str(), whole) != 0) ==
                    (found != model_.end() && !isText),
                "a number is read as a number only");
        require((Param_GetValue(set_.get(), key.c_str(), narrow) != 0) == isText,
                "a text is read as a text only");
        require(whole == (found != model_.end() && !isText ? found->number : -1), "the number");
        require(narrow.Compare(isText ? found->text->c_str() : "before") == 0, "the text");
      }
    }
    require(set_->GetCount() == model_.size(), "the count of a set");
    for (std::uint32_t i = 0; i < model_.size(); ++i) {
      require(model_[i].key == set_->GetKey(i), "the keys in their order");
    }
  }

 private:
  struct Entry {
    std::string key;
    std::optional<std::string> text;
    int number;
  };
  void put(std::vector<Entry>::iterator found, const Entry& entry) {
    if (found != model_.end()) {
      *found = entry;
    } else {
      model_.push_back(entry);
    }
  }

  Held<IParam> set_{new_MemParam()};
  std::vector<Entry> model_;
};

// A narrow string and a variant that take each other's values.
class Strings {
 public:
  void call(Input& input) {
    const std::string text = input.text(input.take(input.u8() % 17)).c_str();
    const int first = input.u8() % 20 - 2, length = input.u8() % 20 - 2;
    const auto limit = [&](int value) {
      return static_cast<std::size_t>(std::clamp(value, 0, static_cast<int>(model_.size())));
    };
    switch (input.u8() % 7) {
      case 0:
        string_ = text.c_str();
        model_ = text;
        break;
      case 1:
        string_.AssignCopy(text.c_str(), std::min(length, static_cast<int>(text.size())));
        model_ = text.substr(0, length < 1 ? 0 : static_cast<std::size_t>(length));
        break;
      case 2: {  // from its own text
        const std::size_t start = limit(first);
        string_ = string_.text + start;
        model_ = model_.substr(start);
        break;
      }
      case 3:
        string_.Format("%s-%d", string_.text, first);
        model_ += '-' + std::to_string(first);
        break;
      case 4: {
        CQLVariant copy;
        variant_ = string_;
        copy = variant_;
        variant_ = std::move(copy);
        string_ = static_cast<const char*>(variant_);
        break;
      }
      case 5: {
        const std::size_t found = first < 0 || first > static_cast<int>(model_.size())
                                      ? model_.npos
                                      : model_.find(text, static_cast<std::size_t>(first));
        require(string_.Find(text.c_str(), first) ==
                    (found == model_.npos ? -1 : static_cast<int>(found)),
                "the index that is found");
        break;
      }
      default: {
        const CXString part = string_.Extract(first, length);
        require(model_.find(part.text) != model_.npos && part.GetLength() <= std::max(length, 0),
                "a part of a string");
      }
    }
    if (model_.size() > 200) {
      string_ = "";
      model_.clear();
    }
    require(model_ == string_.text && string_.GetLength() == static_cast<int>(model_.size()),
            "the text of a string");
  }

 private:
  CXString string_;
  CQLVariant variant_;
  std::string model_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 2048) return 0;
  const std::uint64_t blocks = odrxAllocCounts().liveBlocks;
  {
    Input input(data, size);
    Lists lists;
    Sets sets;
    Strings strings;
    while (!input.isEmpty()) {
      switch (input.u8() % 3) {
        case 0:
          lists.call(input);
          break;
        case 1:
          sets.call(input);
          break;
        default:
          strings.call(input);
      }
    }
  }
  require(odrxAllocCounts().liveBlocks == blocks, "nothing leaks");
  return 0;
}
