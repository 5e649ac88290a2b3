#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "toolkit/str.h"

namespace {

// The texts, each followed by a blank, then "@" and the cursor's index; the cursor stays put.
std::string Texts(SList<Str>& list) {
  const long position = list.GetPosition();
  std::string joined;
  for (list.Begin(); Str* s = list.GetNext();) joined += std::string(s->String()) + " ";
  list.Begin(position);
  return joined + "@" + std::to_string(position);
}

// A list that borrows its elements from strings that outlive it.
struct Borrowed {
  Str a{"a"}, b{"b"}, c{"c"}, z{"z"}, another_b{"b"};
  Str* abc[3] = {&a, &b, &c};
  SList<Str> l;
  Borrowed() { l.Append(abc, 3); }
};

}  // namespace

TEST(SList, CursorStaysInTheList) {
  Borrowed f;
  f.l.Begin();
  EXPECT_TRUE(f.l.IsHead() && f.l.GetNext() == &f.a && f.l.GetNext() == &f.b);
  EXPECT_TRUE(f.l.GetNext() == &f.c && f.l.IsEnd() && f.l.GetNext() == nullptr);
  f.l.Next(), f.l.Back();  // Next stays at the end
  EXPECT_EQ(&f.c, f.l.Get());
  f.l.Begin(), f.l.Back();  // Back stays at the head
  EXPECT_TRUE(f.l.IsHead());
  f.l.Next(10);
  EXPECT_TRUE(f.l.IsEnd() && f.l.Begin(1)->next->item == &f.b);
  EXPECT_FALSE(f.l.SetPosition(3) || f.l.SetPosition(-1) || f.l.Get(3) != nullptr);
  EXPECT_EQ("a b c @1", Texts(f.l));
}

TEST(SList, InsertingSharesThePointers) {
  Borrowed f;
  SList<Str> other;
  f.l.Begin(), f.l.Append(&f.z);  // from anywhere, behind the last element, and current
  EXPECT_EQ("a b c z @3", Texts(f.l));
  f.l.InsertNext(&f.a), f.l.InsertNext(&f.b), f.l.Insert(&f.c);  // "z" stays, then "c" is current
  f.l.Insert(&f.z, 1), f.l.Insert(&f.z, -1), other.Insert(&f.z, 0);  // only index 0 of a list
  EXPECT_EQ("a b c a b c z @5|@0", Texts(f.l) + "|" + Texts(other));
  f.l.Insert(&f.z, 0), other.Append(f.abc, 2), f.l.SetPosition(7), f.l.Insert(other);
  EXPECT_EQ("z a b c a b c a b z @9|@0", Texts(f.l) + "|" + Texts(other));  // links moved
  EXPECT_EQ(10, f.l.Count() + other.Count());
  other.Copy(f.abc, 2), other.Append(other);  // doubles once
  EXPECT_EQ("a b a b @4", Texts(other));
}

TEST(SList, RemovingAndTurning) {
  Borrowed f;
  f.l.SetPosition(1);
  EXPECT_TRUE(f.l.Replace(&f.z, 3) == nullptr && f.l.Remove(-1) == nullptr);
  EXPECT_TRUE(f.l.Replace(&f.z, 2) == &f.c && f.l.Remove(0) == &f.a);
  EXPECT_EQ("b z @0", Texts(f.l));  // the next element became current
  f.l.Begin(2);
  EXPECT_TRUE(f.l.Remove() == nullptr && f.l.Replace(&f.a) == nullptr && f.l.Count() == 2);
  f.l.Append(&f.c), f.l.Reverse(), f.l.Append(&f.a);  // the links stay well formed
  Str** copied = f.l.CopyToArray();
  EXPECT_TRUE(copied[0] == &f.c && copied[3] == &f.a && f.l.IsEnd());
  delete[] copied;
  EXPECT_TRUE(f.l.Contains(&f.b) && !f.l.Contains(&f.another_b));  // the pointer, not the text

  SList<Str> owning;
  owning.Append(new Str("one")), owning.Append(new Str("two")), owning.Clear();  // both freed
  owning.Append(&f.a), owning.Reset();
  EXPECT_EQ("@0|a", Texts(owning) + "|" + f.a.String());
}

TEST(StrList, CopiesLinesAndOrder) {
  Str original("abc");
  StrList list, copy, once;
  list.Append(&original), list.Insert("first"), list.InsertNext(original);
  original.Copy("xyz");
  list.Insert(&original, 0), list.Insert("never", 1);  // the refused one leaks no copy
  copy.Copy(list);
  EXPECT_EQ("xyz abc first abc @0|xyz abc first abc @4", Texts(list) + "|" + Texts(copy));
  list.SetList("a\r\nb\n\nc\n");
  EXPECT_EQ("a\r b  c @3", Texts(list));

  list.SetList("");
  for (const char* t : {"b", "a", "c", "b"}) list.Collate(t), once.CollateOnce(t);
  EXPECT_EQ("a b b c @2|a b c @1", Texts(list) + "|" + Texts(once));  // behind equal texts
  EXPECT_FALSE(once.CollateOnce("ab"));
  list.Insert("b\xE9"), list.Insert("ab"), list.Sort(false);
  EXPECT_EQ("a ab b b b\xE9 c ", Texts(list).substr(0, 14));
  list.Sort(true);  // descending
  EXPECT_EQ("c b\xE9 b b ab a ", Texts(list).substr(0, 14));
}

TEST(StrList, FindingFamily) {
  StrList list;
  list.SetList("phd_dir\npoly_dir\nphd_dir\nchromat_dir");
  EXPECT_TRUE(list.Compare("ph") && list.GetPosition() == 0 && !list.Find("ph") && list.IsEnd());
  EXPECT_TRUE(list.Find(Str("phd_dir")) && list.FindNext("phd_dir") && list.GetPosition() == 2);
  EXPECT_FALSE(list.FindNext("phd_dir") || list.FindNext("phd_dir"));
  list.Begin();
  EXPECT_TRUE(list.CompareNext("p") && list.GetPosition() == 1);
  EXPECT_TRUE(list.Contains("mat") && list.GetPosition() == 3 && !list.Contains(""));
  list.Begin();
  EXPECT_TRUE(list.ContainsNext(Str("d_")) && list.GetPosition() == 2);
  EXPECT_TRUE(list.GetIndex("chromat_dir") == 3 && list.GetIndex(Str("poly_dir")) == 1);
  Str out("unchanged");
  EXPECT_TRUE(list.GetNextString(out) && out == "poly_dir" && list.GetString(out));
  EXPECT_TRUE(out == "phd_dir" && list.GetString(out, 3) && out == "chromat_dir");
  EXPECT_FALSE(list.GetString(out, 4) || list.GetNextString(out));
  EXPECT_TRUE(out == "chromat_dir" && list.GetIndex("edit_dir") == -1 && list.IsEnd());
}

// A StrList deletes the copies it made, once, and never a pointer handed in: each row leaves
// borrowed or shared pointers in `l` and is destroyed in both orders; AddressSanitizer and
// LeakSanitizer tell of any copy freed twice, freed too early or not at all.
TEST(StrList, DeletesOnlyItsOwnCopies) {
  Str outside("outside");
  Str* borrowed[] = {&outside};
  const std::function<void(StrList&, StrList&)> rows[] = {
      [&](StrList& l, StrList&) { l.Append(borrowed, 1L); },
      [&](StrList& l, StrList&) {
        l.Append("own");
        l.Copy(borrowed, 1L);  // drops the link of its own copy, not the copy
      },
      [&](StrList& l, StrList&) {
        l.Append("own");
        delete l.Replace(&outside);
      },
      [&](StrList& l, StrList&) {
        l.Append("own");
        l.Append(l);  // one copy linked twice
      },
      [&](StrList& l, StrList& o) {
        o.Append("own");
        l.Append(o);
        delete o.Remove(0);
      },
      [&](StrList& l, StrList& o) {
        o.Append("own");
        l.Append(o);  // shared: either list may go first
      },
      [&](StrList& l, StrList& o) {
        o.Append("moved");
        l.Insert(o);
      },
      [&](StrList& l, StrList& o) {
        l.Append("own");
        o.Append("x");
        l.Copy(o);
      },
  };
  for (const auto& row : rows) {
    for (bool listFirst : {true, false}) {
      auto* l = new StrList;
      auto* o = new StrList;
      row(*l, *o);
      if (listFirst) delete l;
      delete o;
      if (!listFirst) delete l;
    }
  }
  EXPECT_STREQ("outside", outside.String());
}
