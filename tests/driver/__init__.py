"""Drives the installer's wizard and looks at it, as somebody does who sits before it, watch in hand. No tests.

What is run with `scripts/in-root` has this package in its path: `from driver.person import Person`. All but what only
reads files (`executable`, `guide`, `outcomes`, `places`) works in a home alone, see tests/home/home.

    person, journey       somebody who looks, presses keys, clicks; their way from page to page
    eyes                  reads all windows of the screen: what and where they are, what they hold (eyes.cpp)
    hands                 keyboard and mouse, as events of the devices themselves
    pixels                what is painted, and pictures of it
    pages, wizard         the wizard's pages; the wizard and its boxes among all windows that were read
    looks                 what is cut, covered or outside in a window
    program               one start of the installer: calls that are to fail, its journal, its end, what it leaves
    wine, answering       other programs of the home's Windows, those that answer requests, and which run
    watch, network        emulated watches on the home's other host, and the cables between the two
    notepad, package      text for the clipboard; something to install
    guide, outcomes       what docs/guide.md explains; the program's own table of what adb comes to
    executable            a Windows program as a file
    evidence              tests that leave what explains their failure, their steps, tests from rows of a table
    waiting, places       waiting with an end; where everything is

Whatever waits ends, with what it waited for in the message. A context manager ends what it started.
"""
