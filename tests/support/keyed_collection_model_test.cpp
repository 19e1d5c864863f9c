// The collection against a plain model, over long random runs of adds, inserts and removals: the
// key table, the free room at the front and the arena compaction all get exercised together.
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "xun/support/key_index.h"
#include "xun/support/keyed_collection.h"
#include "xun/support/text.h"

namespace xun {
namespace {

using Collection = OrderedKeyedCollection<int>;

struct Entry {
  int value;
  std::optional<std::string> key;
};

class Model {
 public:
  std::vector<Entry> entries;

  std::optional<size_t> FindKey(const std::string& key) const {
    const std::string folded = text::FoldCase(key);
    for (size_t i = 0; i < entries.size(); ++i)
      if (entries[i].key && text::FoldCase(*entries[i].key) == folded) return i;
    return std::nullopt;
  }
};

// Keys drawn from a small pool so that duplicates, case variants and reuse after removal are
// frequent; some are long or not ASCII, which take the slow folding path.
std::string RandomKey(std::mt19937& rng) {
  static const std::vector<std::string> stems = {"q",
                                                 "Q",
                                                 "page",
                                                 "PAGE",
                                                 "Äpfel",
                                                 "äPFEL",
                                                 "\u212Aelvin",
                                                 "kelvin",
                                                 "ΣΟΦΙΑ",
                                                 "σοφια",
                                                 std::string(70, 'x'),
                                                 std::string(70, 'X'),
                                                 "straße"};
  std::uniform_int_distribution<size_t> stem(0, stems.size() - 1);
  std::uniform_int_distribution<int> number(0, 40);
  return stems[stem(rng)] + std::to_string(number(rng));
}

void ExpectSame(const Collection& c, const Model& m) {
  ASSERT_EQ(static_cast<size_t>(c.Count()), m.entries.size());
  size_t i = 0;
  for (const int value : c)
    ASSERT_EQ(value, m.entries[i++].value);
  for (size_t p = 0; p < m.entries.size(); ++p) {
    const Entry& e = m.entries[p];
    ASSERT_EQ(c.KeyOf(Index(static_cast<int32_t>(p + 1))), e.key);
    if (e.key) {
      ASSERT_EQ(c.PositionOf(*e.key), static_cast<int32_t>(p + 1)) << *e.key;
      ASSERT_EQ(c.Item(text::ToUpper(*e.key)), e.value) << *e.key;
    }
  }
}

TEST(KeyedCollectionModel, RandomOperationsAgreeWithAPlainList) {
  for (const unsigned seed : {1u, 2u, 3u}) {
    SCOPED_TRACE(seed);
    std::mt19937 rng(seed);
    Collection c;
    Model m;
    int next_value = 0;
    for (int step = 0; step < 6000; ++step) {
      const int op = std::uniform_int_distribution<int>(0, 9)(rng);
      const size_t n = m.entries.size();
      if (op <= 4 || n == 0) {  // add: at the end, before or after a position or a key
        std::optional<std::string> key;
        if (rng() % 4 != 0) key = RandomKey(rng);
        size_t at = n;
        std::optional<Index> before, after;
        if (n > 0 && rng() % 2 == 0) {
          const size_t anchor = rng() % n;
          const bool by_key = m.entries[anchor].key && rng() % 2 == 0;
          const Index index =
              by_key ? Index(*m.entries[anchor].key) : Index(static_cast<int32_t>(anchor + 1));
          if (rng() % 2 == 0) {
            before = index;
            at = anchor;
          } else {
            after = index;
            at = anchor + 1;
          }
        }
        const bool duplicate = key && m.FindKey(*key).has_value();
        const int value = next_value++;
        const auto add = [&] {
          c.Add(value, key ? std::optional<std::string_view>(*key) : std::nullopt, before, after);
        };
        if (duplicate) {
          EXPECT_ANY_THROW(add());
        } else {
          add();
          m.entries.insert(m.entries.begin() + static_cast<std::ptrdiff_t>(at), {value, key});
        }
      } else if (op <= 8) {  // remove, by position or by key, anywhere
        const size_t at = (rng() % 3 == 0) ? 0 : rng() % n;
        if (m.entries[at].key && rng() % 2 == 0)
          c.Remove(Index(*m.entries[at].key));
        else
          c.Remove(Index(static_cast<int32_t>(at + 1)));
        m.entries.erase(m.entries.begin() + static_cast<std::ptrdiff_t>(at));
      } else {  // a lookup of a random key agrees on presence
        const std::string key = RandomKey(rng);
        ASSERT_EQ(c.Exists(key), m.FindKey(key).has_value()) << key;
      }
      if (step % 97 == 0) ExpectSame(c, m);
    }
    ExpectSame(c, m);
    // Empty it from the front: the free room there is given back as it grows.
    while (!m.entries.empty()) {
      c.Remove(Index(1));
      m.entries.erase(m.entries.begin());
    }
    ExpectSame(c, m);
  }
}

TEST(KeyIndex, KeepsKeysThroughCompactionAndAddsItsOwnText) {
  detail::KeyIndex index(true);
  std::vector<uint32_t> ids;
  for (int i = 0; i < 5000; ++i)
    ids.push_back(index.Add("key-" + std::to_string(i), static_cast<size_t>(i)));
  // Removing most keys leaves garbage that the next adds compact away.
  for (int i = 0; i < 5000; ++i)
    if (i % 10 != 0) index.Remove(ids[static_cast<size_t>(i)]);
  for (int i = 0; i < 100; ++i)
    ASSERT_NE(index.Add("new-" + std::to_string(i), 0), detail::KeyIndex::kNoKey);
  for (int i = 0; i < 5000; i += 10) {
    const uint32_t id = index.Find("KEY-" + std::to_string(i));
    ASSERT_EQ(id, ids[static_cast<size_t>(i)]);
    EXPECT_EQ(index.Text(id), "key-" + std::to_string(i));
    EXPECT_EQ(index.PositionOf(id), static_cast<size_t>(i));
  }
  EXPECT_EQ(index.Count(), 600u);

  // A key given as a view of the index's own text is copied before the arena may move: a part
  // of a held key is a new key.
  detail::KeyIndex exact(false);
  uint32_t id = exact.Add("a-long-key-of-its-own", 0);
  for (size_t length = 20; length > 0; --length) {
    id = exact.Add(exact.Text(id).substr(0, length), length);
    ASSERT_NE(id, detail::KeyIndex::kNoKey);
  }
  EXPECT_EQ(exact.Text(exact.Find("a-long")), "a-long");
  EXPECT_EQ(exact.Find("A-LONG"), detail::KeyIndex::kNoKey);  // case matters in an exact index
  EXPECT_EQ(exact.Count(), 21u);
}

}  // namespace
}  // namespace xun
