import unittest

from tokens import matching, tokens_of


def texts(source):
    return [token.text for token in tokens_of(source)]


class Tokens(unittest.TestCase):
    def test_comments_and_directives_are_left_out(self):
        source = '#include "x.h"\n#define A 1 \\\n    + 2\n/// says 3\nint a = 4; // 5\n/* 6\n7 */ int b;\n'

        self.assertEqual("int a = 4 ; int b ;".split(), texts(source))

    def test_operators_are_as_long_as_possible(self):
        self.assertEqual(["a", "<<=", "b", "->", "c", "++", ";", "x", "::", "y", "!=", "z"], texts("a<<=b->c++;x::y!=z"))

    def test_numbers_have_their_suffixes_and_signs_of_exponents(self):
        self.assertEqual(["1'000u", "+", "0x1Fu", "-", "1.5e-3f", ";"], texts("1'000u + 0x1Fu - 1.5e-3f;"))

    def test_texts_are_one_token_each(self):
        source = 'f("a // \\" b", L\'x\', u8"c", R"(d " e)", R"--(f )" g)--");'

        self.assertEqual(['"a // \\" b"', "L'x'", 'u8"c"', 'R"(d " e)"', 'R"--(f )" g)--"'],
                         [token.text for token in tokens_of(source) if token.kind in ("string", "char")])

    def test_what_is_for_windows_alone_is_left_out(self):
        source = "#if defined(_WIN32)\na;\n#else\nb;\n#endif\n#ifndef _WIN32\nc;\n#else\nd;\n#endif\n#ifdef _WIN32\ne;\n#endif\nf;\n"

        self.assertEqual("b ; c ; f ;".split(), texts(source))

    def test_both_branches_of_another_condition_are_taken(self):
        self.assertEqual("a ; b ; c ;".split(), texts("#if defined(__GNUC__)\na;\n#else\nb;\n#endif\n#if 0\nc;\n#endif\n"))

    def test_a_nested_condition_does_not_end_the_outer_one(self):
        self.assertEqual(["b"], texts("#ifdef _WIN32\n#ifdef X\na\n#else\na\n#endif\na\n#else\nb\n#endif\n"))

    def test_offsets_are_those_of_the_text(self):
        source = "a /* b */ + c"

        self.assertEqual(["a", "+", "c"], [source[token.start:token.end] for token in tokens_of(source)])


class Matching(unittest.TestCase):
    def test_brackets_have_their_counterparts(self):
        pairs = matching(tokens_of("f(a[1], {b})"))

        self.assertEqual({1: 10, 10: 1, 3: 5, 5: 3, 7: 9, 9: 7}, pairs)

    def test_a_bracket_without_a_counterpart_is_left_out(self):
        self.assertEqual({}, matching(tokens_of("( ]")))
