"""The reminder of what the owner has still to fill in."""

import unittest

from owner import open_points

README = """# The product

- [ ] not the owner's

## For the owner

Fill in:

- [ ] the address of support,
  in README.txt too
- [x] done, and
  said so
- [ ] the license

## After

- [ ] nor this
"""


class Owner(unittest.TestCase):
    def test_open_points_come_whole_and_done_ones_not(self) -> None:
        points = ["- [ ] the address of support,\n  in README.txt too", "- [ ] the license"]
        self.assertEqual(points, open_points(README))

    def test_a_text_without_the_section_has_none(self) -> None:
        self.assertEqual([], open_points("# The product\n\n- [ ] not the owner's\n"))


if __name__ == "__main__":
    unittest.main()
