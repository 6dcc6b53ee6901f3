import unittest

from changes import changes_of


def changed(source, kind):
    """What the changes of a kind make of the source."""
    return [change.applied(source) for change in changes_of("x.cpp", source) if change.kind == kind]


def bodies(body, kind):
    """The same for the body of a function."""
    head, tail = "void f() { ", " }"
    return [text[len(head):-len(tail)] for text in changed(head + body + tail, kind)]


class Conditions(unittest.TestCase):
    def test_comparisons_are_changed(self):
        self.assertEqual(["return a != b;"], bodies("return a == b;", "condition"))
        self.assertEqual(["return a <= b;", "return a >= b;"], bodies("return a < b;", "condition"))
        self.assertEqual(["return a || !b;", "return a && b;"], bodies("return a && !b;", "condition"))

    def test_a_whole_condition_is_reversed(self):
        self.assertEqual(["if (!(ready())) g();"], bodies("if (ready()) g();", "condition"))
        self.assertEqual(["while (!(a)) { }"], bodies("while (a) { }", "condition"))

    def test_a_condition_with_a_declaration_is_left(self):
        self.assertEqual([], bodies("if (T* p = g()) h();", "condition"))

    def test_brackets_of_templates_are_left(self):
        self.assertEqual([], changed("template<class T> std::vector<T> f(T&& a);", "condition"))


class Arithmetic(unittest.TestCase):
    def test_operators_are_changed(self):
        self.assertEqual(["a = b - c * d;", "a = b + c / d;"], bodies("a = b + c * d;", "arithmetic"))
        self.assertEqual(["--i; j += 2;", "++i; j -= 2;"], bodies("++i; j += 2;", "arithmetic"))

    def test_signs_and_pointers_are_left(self):
        self.assertEqual([], bodies("T* p = &q; a = -1; const T& r = *p;", "arithmetic"))


class Constants(unittest.TestCase):
    def test_numbers_are_one_more(self):
        self.assertEqual(["a = 10;"], bodies("a = 9;", "constant"))
        self.assertEqual(["a = 0x10u;"], bodies("a = 0xFu;", "constant"))
        self.assertEqual(["a = 1.5f;"], bodies("a = 0.5f;", "constant"))
        self.assertEqual(["a = 1001;"], bodies("a = 1'000;", "constant"))

    def test_booleans_are_exchanged(self):
        self.assertEqual(["return false;"], bodies("return true;", "constant"))

    def test_assertions_of_the_compiler_are_left(self):
        self.assertEqual([], changed("static_assert(sizeof(T) == 8);", "constant"))


class Texts(unittest.TestCase):
    def test_a_text_gets_a_character_more(self):
        self.assertEqual(['g(u"ab~");'], bodies('g(u"ab");', "text"))
        self.assertEqual(['g("~");'], bodies('g("");', "text"))

    def test_a_character_becomes_the_next_one(self):
        self.assertEqual(["a = 'c';"], bodies("a = 'b';", "text"))

    def test_the_character_before_a_quote_and_a_backslash_becomes_the_one_before(self):
        self.assertEqual(["a = '%';"], bodies("a = '&';", "text"))
        self.assertEqual(["a = 'Z';"], bodies("a = '[';", "text"))

    def test_includes_and_linkage_are_left(self):
        self.assertEqual([], changed('#include "a.h"\nextern "C" void f();', "text"))


class Priorities(unittest.TestCase):
    def test_a_priority_becomes_its_neighbour(self):
        self.assertEqual(['SONAVIT_LOG(m, LOG_WARNING, out + 1);'], bodies('SONAVIT_LOG(m, LOG_ERROR, out + 1);', "priority"))


class Dropped(unittest.TestCase):
    def test_a_call_is_dropped_and_its_lines_remain(self):
        self.assertEqual([";  g(1,\n 2); h();", "a();  ;\n h();", "a();  g(1,\n 2); ;"], bodies("a();  g(1,\n 2); h();", "call"))

    def test_releases_are_a_kind_of_their_own(self):
        self.assertEqual(["; ::CoTaskMemFree(q); delete r;", "p->Release(); ; delete r;", "p->Release(); ::CoTaskMemFree(q); ;"],
                         bodies("p->Release(); ::CoTaskMemFree(q); delete r;", "release"))

    def test_an_assignment_is_dropped(self):
        self.assertEqual([";"], bodies("m_a = 1;", "call"))


class Order(unittest.TestCase):
    def test_two_statements_are_exchanged(self):
        self.assertEqual(["b(); // why\n a(); return;"], bodies("a(); // why\n b(); return;", "order"))

    def test_assignments_that_do_not_know_each_other_are_left(self):
        self.assertEqual([], bodies("m_a = x; m_b = y;", "order"))
        self.assertEqual([], bodies("a.p = static_cast<T*>(q); a.n = sizeof(T);", "order"))
        self.assertEqual(["a.n = n(); a.p = static_cast<T*>(q);"], bodies("a.p = static_cast<T*>(q); a.n = n();", "order"))

    def test_assignments_that_do_are_exchanged(self):
        self.assertEqual(["m_b = m_a; m_a = x;"], bodies("m_a = x; m_b = m_a;", "order"))
        self.assertEqual(["m_b = g(); m_a = f();"], bodies("m_a = f(); m_b = g();", "order"))

    def test_statements_of_different_blocks_are_left(self):
        self.assertEqual([], bodies("if (x) { a(); } b();", "order"))


class Change(unittest.TestCase):
    def test_its_name_says_where_it_is(self):
        first, second = [change for change in changes_of("d/x.cpp", "int a;\n  bool b = 1 < 2;\n") if change.kind == "condition"]

        self.assertEqual("d/x.cpp:2:14:condition", first.id)
        self.assertEqual("d/x.cpp:2:14:condition:1", second.id)

    def test_its_diff_has_the_changed_lines_alone(self):
        source = "void f()\n{\n    a();\n    g(1,\n      2);\n}\n"
        change = next(each for each in changes_of("x.cpp", source) if each.kind == "call" and each.line == 4)

        self.assertEqual(["- g(1,", "- 2);", "+ ;", "+ "], change.diff(source))
        self.assertEqual((4, 5), (change.line, change.last_line))

    def test_names_are_different(self):
        source = "void f() { a(b == c, 1, 2 < 3, \"x\"); delete p; a(1); if (!d && e) g(); }"
        names = [change.id for change in changes_of("x.cpp", source)]

        self.assertEqual(len(names), len(set(names)))
