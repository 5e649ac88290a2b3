// SList, the list of borrowed pointers with one cursor, and StrList, the list that owns copies of
// its texts. Each test is a walk: steps in order, each with the answer it must give.
#include "test_util.h"

static std::string Name(const Str* s) { return s != nullptr ? s->String() : "null"; }

// clang-format off
#define ROW(code) [&](StrList& l, [[maybe_unused]] StrList& o) { code; }
// clang-format on

// SList borrows its elements. Next stays at the end and Back at the head; a position out of range
// changes nothing. Insert goes in front of the current element, by index only at 0 of a
// non-empty list; inserting a list moves its links over, and a list appended to itself doubles
// once. Replace and Remove hand the old pointer back; Clear deletes the elements, Reset only the
// links.
TEST(SList, CursorInsertingAndRemoving) {
  Str a("a"), b("b"), c("c"), z("z"), otherB("b");
  Str* abc[3] = {&a, &b, &c};
  SList<Str> l, other, owning;
  Str** copied = nullptr;
  Walk(DO(l.Append(abc, 3)), DO(l.Begin()), STEP(Name(l.GetNext()), "a"), DO(l.Next(10)),
       DO(l.Back()), STEP(Name(l.Get()), "c"), DO(l.Begin()), DO(l.Back()), STEP(l.IsHead(), true),
       STEP(l.SetPosition(3), false), STEP(Name(l.Get(1)), "b"), STEP(l.GetPosition(), 1L),
       DO(l.Append(&z)), STEP(l.GetPosition(), 3L), DO(l.InsertNext(&a)), DO(l.Insert(&c)),
       DO(l.Insert(&z, 1)), DO(other.Insert(&z, 0)), STEP(Texts(l), "[a][b][c][a][c][z]"),
       STEP(l.GetPosition(), 4L), STEP(other.Count(), 0L), DO(l.Insert(&z, 0)),
       DO(other.Append(abc, 2)), DO(l.SetPosition(6)), DO(l.Insert(other)),
       STEP(Texts(l), "[z][a][b][c][a][c][a][b][z]"), STEP(l.GetPosition(), 8L),
       STEP(other.Count(), 0L), DO(other.Copy(abc, 2)), DO(other.Append(other)),
       STEP(Texts(other), "[a][b][a][b]"), DO(other.Insert(other)),  // into itself: nothing
       STEP(Texts(other), "[a][b][a][b]"), DO(l.SetPosition(1)),
       STEP(Name(l.Replace(&z, 9)), "null"), STEP(Name(l.Replace(&z, 2)), "b"),
       STEP(Name(l.Remove(0)), "z"), STEP(Name(l.Get()), "a"), DO(l.Begin(8)),
       STEP(Name(l.Remove()), "null"), DO(l.Reverse()), STEP(l.IsHead(), true),
       STEP(Texts(l), "[z][b][a][c][a][c][z][a]"), DO(copied = l.CopyToArray()),
       STEP(Name(copied[1]), "b"), STEP(l.IsEnd(), true), DO(delete[] copied),
       STEP(l.Contains(&b), true), STEP(l.Contains(&otherB), false),
       DO(owning.Append(new Str("one"))), DO(owning.Clear()), DO(owning.Append(&a)),
       DO(owning.Reset()), STEP(owning.Count(), 0L), STEP(a, "a/2"));
}

// Every insertion stores a copy, also of a text that changes later; a refused one leaks none.
// Collate inserts behind equal texts, CollateOnce not at all when the text is there.
TEST(StrList, CopiesLinesAndOrder) {
  Str original("abc");
  StrList list, copy, once;
  Walk(DO(list.Append(&original)), DO(list.Insert("first")), DO(list.InsertNext(original)),
       DO(original.Copy("xyz")), DO(list.Insert(&original, 0)), DO(list.Insert("never", 1)),
       DO(copy.Copy(list)), STEP(Texts(list), "[xyz][abc][first][abc]"),
       STEP(list.GetPosition(), 0L), STEP(Texts(copy), "[xyz][abc][first][abc]"),
       STEP(copy.GetPosition(), 4L), DO(list.SetList("a\r\nb\n\nc\n")),
       STEP(Texts(list), "[a\r][b][][c]"), DO(list.SetList("")), DO(list.Collate("b")),
       DO(list.Collate("a")), DO(list.Collate("c")), DO(list.Collate(Str("b"))),
       STEP(Texts(list), "[a][b][b][c]"), STEP(list.GetPosition(), 2L),
       STEP(once.CollateOnce("b"), false), STEP(once.CollateOnce("a"), false),
       STEP(once.CollateOnce("b"), true), STEP(once.GetPosition(), 1L), STEP(Texts(once), "[a][b]"),
       DO(list.Insert("b\xE9")), DO(list.Insert("ab")), DO(list.Sort(false)),
       STEP(Texts(list), "[a][ab][b][b][b\xE9][c]"), DO(list.Sort(true)),
       STEP(Texts(list), "[c][b\xE9][b][b][ab][a]"));
}

// Searches leave the element they found current, or the cursor at the end; reads leave the
// target alone when there is nothing to read.
TEST(StrList, FindingFamily) {
  StrList list;
  Str out("unchanged");
  Walk(DO(list.SetList("phd_dir\npoly_dir\nphd_dir\nchromat_dir")), STEP(list.Compare("ph"), true),
       STEP(list.GetPosition(), 0L), STEP(list.Find("ph"), false),
       STEP(list.Find(Str("phd_dir")), true), STEP(list.FindNext("phd_dir"), true),
       STEP(list.GetPosition(), 2L), STEP(list.FindNext("phd_dir"), false), DO(list.Begin()),
       STEP(list.CompareNext("p"), true), STEP(list.GetPosition(), 1L),
       STEP(list.Contains("mat"), true), STEP(list.GetPosition(), 3L), DO(list.Begin()),
       STEP(list.ContainsNext(Str("d_")), true), STEP(list.GetPosition(), 2L),
       STEP(list.GetIndex("chromat_dir"), 3L), STEP(list.GetIndex(Str("poly_dir")), 1L),
       STEP(list.GetNextString(out), true), STEP(out, "poly_dir/10"),
       STEP(list.GetString(out, 3), true), STEP(out, "chromat_dir/12"),
       STEP(list.GetString(out, 4), false), STEP(out, "chromat_dir/12"),
       STEP(list.GetIndex("edit_dir"), -1L), STEP(list.IsEnd(), true));
}

// A StrList deletes the copies it made, once, and never a pointer handed in. Each row starts
// from a list `l` and a list `o` holding one copy each, leaves borrowed or shared pointers in `l`
// (a Copy over a copy drops the link, not the copy; a list appended to itself links one copy
// twice; a list appended to another shares its copies) and is destroyed in both orders;
// AddressSanitizer and LeakSanitizer tell of any copy freed twice, too early or not at all.
TEST(StrList, DeletesOnlyItsOwnCopies) {
  Str outside("outside");
  Str* borrowed[] = {&outside};
  const std::function<void(StrList&, StrList&)> rows[] = {
    ROW(l.Append(borrowed, 1L)),
    ROW(l.Copy(borrowed, 1L)),
    ROW(delete l.Replace(&outside)),
    ROW(l.Append(l)),
    ROW(l.Append(o)),
    ROW(l.Insert(o)),
    ROW(l.Copy(o)),
    ROW(l.Append(o); delete o.Remove(0))
  };
  for (const auto& row : rows) {
    for (bool listFirst : {true, false}) {
      auto l = std::make_unique<StrList>(), o = std::make_unique<StrList>();
      l->Append("own");
      o->Append("other");
      row(*l, *o);
      (listFirst ? l : o).reset();
    }
  }
  EXPECT_STREQ("outside", outside.String());
}
