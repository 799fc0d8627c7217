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
    def test_open_points_of_the_section_come_whole_and_others_not(self) -> None:
        points = ["- [ ] the address of support,\n  in README.txt too", "- [ ] the license"]
        self.assertEqual(points, open_points(README))
        self.assertEqual([], open_points("# The product\n\n- [ ] not the owner's\n"), "without the section")


if __name__ == "__main__":
    unittest.main()
