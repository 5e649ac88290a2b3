#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <string>
#include <vector>

#include "toolkit/str.h"

namespace {

// The list's texts joined by blanks, then "@" and the cursor's index; the cursor is put back.
std::string Texts(SList<Str>& list) {
  const long position = list.GetPosition();
  std::string joined;
  list.Begin();
  while (Str* s = list.GetNext()) joined += std::string(s->String()) + " ";
  list.Begin(position);
  return joined + "@" + std::to_string(position);
}

void Fill(StrList& list, std::initializer_list<const char*> texts) {
  for (const char* t : texts) list.Append(t);
}

// A list that does not own its elements, over strings that outlive it.
struct Borrowed {
  Str a{"a"}, b{"b"}, c{"c"}, z{"z"};
  SList<Str> list;
  Borrowed() {
    list.Append(&a);
    list.Append(&b);
    list.Append(&c);
  }
};

}  // namespace

TEST(SList, CursorWalks) {
  Borrowed f;
  f.list.Begin();
  EXPECT_TRUE(f.list.IsHead());
  EXPECT_EQ(f.list.GetNext(), &f.a);
  EXPECT_EQ(f.list.GetNext(), &f.b);
  EXPECT_EQ(f.list.GetNext(), &f.c);
  EXPECT_TRUE(f.list.IsEnd());
  EXPECT_EQ(f.list.GetPosition(), 3);
  EXPECT_EQ(f.list.GetNext(), nullptr);
  f.list.Next();  // stays at the end
  EXPECT_EQ(f.list.GetPosition(), 3);

  f.list.Back();
  EXPECT_EQ(f.list.Get(), &f.c);
  f.list.Back();
  f.list.Back();
  f.list.Back();  // stays at the head
  EXPECT_TRUE(f.list.IsHead());
  EXPECT_EQ(f.list.Get(), &f.a);

  f.list.Next(10);
  EXPECT_TRUE(f.list.IsEnd());
  EXPECT_EQ(f.list.Begin(1)->next->item, &f.b);
  EXPECT_EQ(f.list.Get(), &f.b);
}

TEST(SList, InsertionForms) {
  Borrowed f;
  f.list.Begin();
  f.list.Append(&f.z);  // from anywhere, behind the last element, and current
  EXPECT_EQ(Texts(f.list), "a b c z @3");

  f.list.InsertNext(&f.a);
  f.list.InsertNext(&f.b);
  EXPECT_EQ(Texts(f.list), "a b c a b z @5");
  f.list.Insert(&f.c);  // in front of the current element, and current
  EXPECT_EQ(Texts(f.list), "a b c a b c z @5");

  f.list.Insert(&f.z, 1);
  f.list.Insert(&f.z, -1);
  EXPECT_EQ(f.list.Count(), 7);
  f.list.Insert(&f.z, 0);
  EXPECT_EQ(Texts(f.list), "z a b c a b c z @0");
  SList<Str> empty;
  empty.Insert(&f.a, 0);
  EXPECT_EQ(empty.Count(), 0);

  SList<Str> other;
  other.Append(&f.a);
  other.Append(&f.b);
  f.list.SetPosition(7);
  f.list.Insert(other);  // the old current element stays current, behind the moved links
  EXPECT_EQ(Texts(f.list), "z a b c a b c a b z @9");
  EXPECT_EQ(f.list.Count(), 10);
  EXPECT_EQ(Texts(other), "@0");
  EXPECT_EQ(other.Count(), 0);
}

TEST(SList, BulkAppendAndCopyShareThePointers) {
  Borrowed f;
  Str* array[] = {&f.z, &f.a};
  f.list.Append(array, 2);
  EXPECT_EQ(Texts(f.list), "a b c z a @5");
  SList<Str> other;
  other.Append(f.list);
  other.Append(other);  // doubles once
  EXPECT_EQ(other.Count(), 10);
  EXPECT_EQ(other.Get(8), &f.z);
  other.Copy(array, 2);
  EXPECT_EQ(Texts(other), "z a @2");
  other.Copy(f.list);
  EXPECT_EQ(Texts(other), "a b c z a @5");
  EXPECT_EQ(other.Count(), 5);
}

TEST(SList, RemoveAndReplaceOutOfRange) {
  Borrowed f;
  f.list.SetPosition(1);
  EXPECT_FALSE(f.list.SetPosition(3));
  EXPECT_FALSE(f.list.SetPosition(-1));
  EXPECT_EQ(f.list.Get(3), nullptr);
  EXPECT_EQ(f.list.Replace(&f.z, 5), nullptr);
  EXPECT_EQ(f.list.Remove(-1), nullptr);
  EXPECT_EQ(Texts(f.list), "a b c @1");

  EXPECT_EQ(f.list.Replace(&f.z, 2), &f.c);
  EXPECT_EQ(f.list.Remove(0), &f.a);
  EXPECT_EQ(Texts(f.list), "b z @0");  // the next element became current
  f.list.Begin(2);
  EXPECT_EQ(f.list.Remove(), nullptr);
  EXPECT_EQ(f.list.Replace(&f.a), nullptr);
  EXPECT_EQ(f.list.Count(), 2);
}

TEST(SList, ArraysReversalAndIdentity) {
  Borrowed f;
  f.list.Begin();
  Str** array = f.list.CopyToArray();
  EXPECT_TRUE(array[0] == &f.a && array[1] == &f.b && array[2] == &f.c);
  EXPECT_TRUE(f.list.IsEnd());
  delete[] array;

  f.list.Reverse();
  f.list.Append(&f.z);  // the links are still well formed after the turn
  EXPECT_EQ(Texts(f.list), "c b a z @3");
  Str equal("a");
  EXPECT_TRUE(f.list.Contains(&f.a));
  EXPECT_FALSE(f.list.Contains(&equal));  // the pointer counts, not the text
}

TEST(SList, ClearDeletesElementsResetDoesNot) {
  SList<Str> list;
  list.Append(new Str("one"));
  list.Append(new Str("two"));
  list.Clear();  // the leak checker sees both strings freed
  EXPECT_EQ(Texts(list), "@0");
  Str kept("kept");
  list.Append(&kept);
  list.Reset();
  EXPECT_EQ(list.Count(), 0);
  EXPECT_STREQ(kept.String(), "kept");
}

TEST(StrList, StoresItsOwnCopies) {
  Str original("abc");
  StrList list;
  list.Append(&original);
  list.Insert("first");
  list.InsertNext(original);
  EXPECT_NE(list.Get(2), &original);
  original.Copy("xyz");
  list.Insert(&original, 0);
  list.Insert("never", 1);  // refused: no copy is made, nothing leaks
  EXPECT_EQ(Texts(list), "xyz abc first abc @0");

  StrList copy;
  copy.Copy(list);
  EXPECT_EQ(Texts(copy), "xyz abc first abc @4");
  EXPECT_NE(copy.Get(0), list.Get(0));

  list.SetList("a\r\nb\n\nc\n");
  EXPECT_EQ(Texts(list), "a\r b  c @3");
  list.SetList("");
  EXPECT_EQ(Texts(list), "@0");
}

TEST(StrList, CollateAndCollateOnce) {
  StrList list;
  for (const char* t : {"b", "a", "c", "b"}) list.Collate(t);
  EXPECT_EQ(Texts(list), "a b b c @2");  // behind every equal text
  list.Collate(Str("0"));
  EXPECT_EQ(Texts(list), "0 a b b c @0");

  StrList once;
  for (const char* t : {"b", "a", "c"}) EXPECT_FALSE(once.CollateOnce(t));
  once.Begin(3);
  EXPECT_TRUE(once.CollateOnce(Str("b")));
  EXPECT_EQ(Texts(once), "a b c @1");
  EXPECT_FALSE(once.CollateOnce("ab"));
  EXPECT_EQ(Texts(once), "a ab b c @1");
}

TEST(StrList, SortBothSenses) {
  StrList list;
  Fill(list, {"b", "c", "a"});
  list.Sort(false);
  EXPECT_EQ(Texts(list).substr(0, 6), "a b c ");
  list.Sort(true);
  EXPECT_EQ(Texts(list).substr(0, 6), "c b a ");

  // Duplicates, prefixes and bytes above 127, against std::sort.
  std::vector<std::string> texts;
  StrList big;
  for (int i = 0; i < 200; ++i) {
    texts.push_back(std::to_string((i * 37) % 23) + (i % 7 == 0 ? "\xE9" : ""));
    big.Append(texts.back().c_str());
  }
  std::sort(texts.begin(), texts.end());
  for (bool descending : {false, true}) {
    big.Sort(descending);
    if (descending) std::reverse(texts.begin(), texts.end());
    std::string expected;
    for (const std::string& t : texts) expected += t + " ";
    EXPECT_EQ(Texts(big).substr(0, expected.size()), expected);
    EXPECT_EQ(big.Count(), 200);
  }
}

TEST(StrList, FindingFamily) {
  StrList list;
  Fill(list, {"phd_dir", "poly_dir", "phd_dir", "chromat_dir"});
  EXPECT_TRUE(list.Compare("ph"));
  EXPECT_EQ(list.GetPosition(), 0);
  EXPECT_FALSE(list.Find("ph"));
  EXPECT_TRUE(list.IsEnd());

  EXPECT_TRUE(list.Find(Str("phd_dir")));
  EXPECT_TRUE(list.FindNext("phd_dir"));  // starts behind the current element
  EXPECT_EQ(list.GetPosition(), 2);
  EXPECT_FALSE(list.FindNext("phd_dir"));
  EXPECT_FALSE(list.FindNext("phd_dir"));  // at the end there is nothing behind
  EXPECT_TRUE(list.IsEnd());

  list.Begin();
  EXPECT_TRUE(list.CompareNext("p"));
  EXPECT_EQ(list.GetPosition(), 1);
  EXPECT_TRUE(list.Contains("mat"));
  EXPECT_EQ(list.GetPosition(), 3);
  list.Begin();
  EXPECT_TRUE(list.ContainsNext(Str("d_")));
  EXPECT_EQ(list.GetPosition(), 2);
  EXPECT_FALSE(list.Contains(""));

  EXPECT_EQ(list.GetIndex("chromat_dir"), 3);
  EXPECT_EQ(list.GetIndex(Str("poly_dir")), 1);
  EXPECT_EQ(list.GetPosition(), 1);

  Str out("unchanged");
  EXPECT_TRUE(list.GetNextString(out));
  EXPECT_STREQ(out.String(), "poly_dir");
  EXPECT_TRUE(list.GetString(out));
  EXPECT_STREQ(out.String(), "phd_dir");
  EXPECT_TRUE(list.GetString(out, 3));
  EXPECT_STREQ(out.String(), "chromat_dir");
  EXPECT_FALSE(list.GetString(out, 4));
  EXPECT_FALSE(list.GetNextString(out));
  EXPECT_STREQ(out.String(), "chromat_dir");
  EXPECT_EQ(list.GetIndex("edit_dir"), -1);
  EXPECT_TRUE(list.IsEnd());
}
