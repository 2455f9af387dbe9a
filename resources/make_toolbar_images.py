#!/usr/bin/env python3
"""Writes the toolbar entry pictures (images/<Key>1.svg, images/<Key>2.svg) and the pointer.

The thirty toolbar pictures share one layout, so they are generated rather than drawn one
by one: run this script after changing a colour, the font or an icon, and commit the SVGs.
Backgrounds, the about picture and the application icon are drawn by hand in images/.
"""

import math
import pathlib

OUT = pathlib.Path(__file__).resolve().parent / "images"

WIDTH, HEIGHT = 192, 29
FONT = "DejaVu Sans"

# Entry at rest: transparent, so that the strip's background shows through.
REST_TEXT = "#e9eff6"
REST_ICON = "#8ec0ec"
# Entry under the mouse: a lit bar with an amber edge.
HOVER_TOP, HOVER_BOTTOM = "#4d94dc", "#2d6cb0"
HOVER_EDGE = "#f4b740"
HOVER_TEXT = "#ffffff"
HOVER_ICON = "#ffffff"


def gear() -> str:
    teeth, outer, inner = 8, 8.6, 6.4
    points = []
    for i in range(teeth * 4):
        angle = 2 * math.pi * i / (teeth * 4) - math.pi / 2
        r = outer if i % 4 in (1, 2) else inner
        points.append(f"{10 + r * math.cos(angle):.2f},{10 + r * math.sin(angle):.2f}")
    return f'<polygon points="{" ".join(points)}"/><circle cx="10" cy="10" r="2.6"/>'


# Each icon is drawn in a 20 x 20 box with strokes of the icon colour.
ICONS = {
    "Personal": '<circle cx="10" cy="6.2" r="3.6"/>'
    '<path d="M3.2 18.5c0-4.2 3-6.8 6.8-6.8s6.8 2.6 6.8 6.8z"/>',
    "Settings": gear(),
    "Login": '<circle cx="6.8" cy="6.5" r="2.8"/><path d="M1.5 16.5c0-3.4 2.3-5.6 5.3-5.6 1.4 0 2.6 .4 3.5 1.2"/>'
    '<circle cx="13.4" cy="8" r="3.1"/><path d="M7.6 18.5c0-3.6 2.5-6 5.8-6s5.8 2.4 5.8 6z"/>',
    "DocType": '<path d="M4.5 1.5h7.5l4 4v13h-11.5z"/><path d="M12 1.5v4h4"/>'
    '<path d="M7 9.5h6.5M7 12.5h6.5M7 15.5h4.5"/>',
    "DocCat": '<path d="M1.5 4.5h6l2 2.2h9v10.8h-17z"/><path d="M1.5 9h17"/>',
    "DocSubCat": '<rect x="1.5" y="1.5" width="6" height="5" rx=".8"/><path d="M4.5 6.5v8h3.5"/>'
    '<path d="M8 10.5h4l1.5 1.6h5v6.4h-10.5z"/>',
    "DocChildCat": '<rect x="1.5" y="1" width="5" height="4.2" rx=".8"/>'
    '<rect x="7.5" y="7.9" width="5" height="4.2" rx=".8"/>'
    '<rect x="13.5" y="14.8" width="5" height="4.2" rx=".8"/>'
    '<path d="M4 5.2v4.8h3.5M10 12.1v4.8h3.5"/>',
    "File": '<rect x="1.5" y="3" width="17" height="4.5" rx=".8"/><path d="M3 7.5v10h14v-10"/>'
    '<path d="M8 11h4"/>',
    "IndexDoc": '<path d="M3.5 1.5h7l3.5 3.5v5"/><path d="M10.5 1.5v3.5h3.5"/>'
    '<path d="M3.5 1.5v17h7"/><path d="M6 8.5h5M6 11.5h3.5"/>'
    '<path d="M15.5 12v7M12 15.5h7" stroke-width="2"/>',
    "SearchDoc": '<path d="M3.5 1.5h7l3 3v3"/><path d="M3.5 1.5v17h5"/><path d="M6 7h4.5M6 10h2.5"/>'
    '<circle cx="13" cy="13" r="3.8"/><path d="M15.8 15.8l3 3" stroke-width="2.4"/>',
    "ImpContacts": '<rect x="4.5" y="1.5" width="13" height="17" rx="1.5"/>'
    '<path d="M2.5 5.5h4M2.5 10h4M2.5 14.5h4"/><circle cx="11.5" cy="8" r="2.3"/>'
    '<path d="M7.8 15c0-2.4 1.6-3.9 3.7-3.9s3.7 1.5 3.7 3.9z"/>',
    "InternetRef": '<circle cx="10" cy="10" r="8.3"/><ellipse cx="10" cy="10" rx="3.6" ry="8.3"/>'
    '<path d="M1.7 10h16.6M3 5.8h14M3 14.2h14"/>',
    "Backup": '<ellipse cx="10" cy="4.3" rx="6.8" ry="2.6"/>'
    '<path d="M3.2 4.3v11.4c0 1.4 3 2.6 6.8 2.6s6.8-1.2 6.8-2.6v-11.4"/>'
    '<path d="M3.2 10c0 1.4 3 2.6 6.8 2.6s6.8-1.2 6.8-2.6"/>',
    "Help": '<circle cx="10" cy="10" r="8.3"/>'
    '<path d="M7.2 7.6c0-1.8 1.3-2.9 2.9-2.9 1.7 0 2.9 1.1 2.9 2.6 0 2.3-2.9 2.4-2.9 4.6"/>'
    '<circle cx="10.1" cy="14.9" r=".6" stroke-width="1.3"/>',
    "About": '<circle cx="10" cy="10" r="8.3"/><circle cx="10" cy="5.8" r=".6" stroke-width="1.4"/>'
    '<path d="M8.4 9h1.6v6M8.2 15h3.6"/>',
}

# Key stem, name shown in the picture; in toolbar order.
ENTRIES = [
    ("Personal", "Personal Details"),
    ("Settings", "Settings"),
    ("Login", "User Accounts"),
    ("DocType", "Document Type"),
    ("DocCat", "Document Category"),
    ("DocSubCat", "Sub-Category"),
    ("DocChildCat", "Child Category"),
    ("File", "File Register"),
    ("IndexDoc", "Index Document"),
    ("SearchDoc", "Search Document"),
    ("ImpContacts", "Important Contacts"),
    ("InternetRef", "Internet References"),
    ("Backup", "Data Backup"),
    ("Help", "Help"),
    ("About", "About"),
]


def entry(stem: str, name: str, lit: bool) -> str:
    icon_colour = HOVER_ICON if lit else REST_ICON
    text_colour = HOVER_TEXT if lit else REST_TEXT
    parts = [
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{HEIGHT}" '
        f'viewBox="0 0 {WIDTH} {HEIGHT}">',
        f"  <title>{name}</title>",
    ]
    if lit:
        parts += [
            '  <defs><linearGradient id="lit" x1="0" y1="0" x2="0" y2="1">'
            f'<stop offset="0" stop-color="{HOVER_TOP}"/><stop offset="1" stop-color="{HOVER_BOTTOM}"/>'
            "</linearGradient></defs>",
            f'  <rect x="1" y="1" width="{WIDTH - 2}" height="{HEIGHT - 2}" rx="4" fill="url(#lit)"/>',
            f'  <rect x="1.5" y="1.5" width="{WIDTH - 3}" height="{HEIGHT - 3}" rx="3.5" fill="none" '
            'stroke="#ffffff" stroke-opacity="0.25"/>',
            f'  <rect x="1" y="4" width="3" height="{HEIGHT - 8}" rx="1.5" fill="{HOVER_EDGE}"/>',
        ]
    parts += [
        f'  <g transform="translate(9 4.5)" fill="none" stroke="{icon_colour}" stroke-width="1.6" '
        f'stroke-linecap="round" stroke-linejoin="round">{ICONS[stem]}</g>',
        f'  <text x="36" y="19" font-family="{FONT}" font-size="12.5" fill="{text_colour}">{name}</text>',
        "</svg>",
    ]
    return "\n".join(parts) + "\n"


HAND = """<svg xmlns="http://www.w3.org/2000/svg" width="32" height="32" viewBox="0 0 32 32">
  <title>Pointing hand, hot spot at the finger tip (12, 3)</title>
  <path d="M10.5 5a2 2 0 0 1 4 0v7.5a1.75 1.75 0 0 1 3.5 0v1a1.75 1.75 0 0 1 3.5 0v1a1.75 1.75 0 0 1 3.5 0
           v7.5c0 4-2.6 6.5-6 6.5h-4.6c-2.2 0-3.6-1.3-4.9-3.2l-4-5.8c-.8-1.2-.5-2.6.6-3.1
           1-.5 2.1-.1 2.9.8l1.5 1.8z"
        fill="#ffffff" stroke="#000000" stroke-width="1.2" stroke-linejoin="round"/>
  <path d="M14.5 12.5v4.5M18 13.5v4M21.5 14.5v4" fill="none" stroke="#000000" stroke-width="1"
        stroke-linecap="round"/>
</svg>
"""


def main() -> None:
    OUT.mkdir(exist_ok=True)
    for stem, name in ENTRIES:
        (OUT / f"{stem}1.svg").write_text(entry(stem, name, False), encoding="utf-8")
        (OUT / f"{stem}2.svg").write_text(entry(stem, name, True), encoding="utf-8")
    (OUT / "Hand.svg").write_text(HAND, encoding="utf-8")


if __name__ == "__main__":
    main()
