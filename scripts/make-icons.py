#!/usr/bin/env python3
"""Writes Vimora's bundled toolbar icons (used when the desktop's icon theme
lacks a name) and the application icon, as small flat SVG files."""
import os
import sys

out = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), '..', 'resources')
S = 'fill="none" stroke="#333" stroke-width="2" stroke-linecap="round" stroke-linejoin="round"'
A = '#2a7fd4'  # the one accent colour

ICONS = {
    'go-previous': f'<path {S} d="M15 5l-7 7 7 7"/>',
    'go-next': f'<path {S} d="M9 5l7 7-7 7"/>',
    'go-up': f'<path {S} d="M5 15l7-7 7 7"/>',
    'view-refresh': f'<path {S} d="M19 12a7 7 0 1 1-2.05-4.95"/><path fill="{A}" d="M20 3v6h-6z"/>',
    'edit-clear-history': f'<circle {S} cx="12" cy="12" r="8"/><path {S} d="M12 7v5l3 2"/><path stroke="{A}" stroke-width="2.5" d="M4 20L20 4"/>',
    'zoom-in': f'<circle {S} cx="10" cy="10" r="6"/><path {S} d="M15 15l5 5M7 10h6M10 7v6"/>',
    'zoom-out': f'<circle {S} cx="10" cy="10" r="6"/><path {S} d="M15 15l5 5M7 10h6"/>',
    'view-grid': f'<path {S} d="M4 4h6v6H4zM14 4h6v6h-6zM4 14h6v6H4zM14 14h6v6h-6z"/>',
    'document-save-as': f'<path {S} d="M5 4h11l3 3v13H5z"/><path {S} d="M8 4v5h7V4M8 20v-6h8v6"/>',
    'edit-copy': f'<path {S} d="M8 8h11v12H8z"/><path {S} d="M5 16V4h11"/>',
    'document-print': f'<path {S} d="M7 9V4h10v5M7 17H4v-8h16v8h-3"/><path {S} d="M7 14h10v6H7z"/>',
    'camera-photo': f'<path {S} d="M3 8h4l2-3h6l2 3h4v11H3z"/><circle fill="{A}" cx="12" cy="13" r="3.5"/>',
    'list-add': f'<path {S} d="M12 5v14M5 12h14"/>',
    'view-list': f'<path {S} d="M9 6h11M9 12h11M9 18h11"/><circle fill="{A}" cx="5" cy="6" r="1.5"/><circle fill="{A}" cx="5" cy="12" r="1.5"/><circle fill="{A}" cx="5" cy="18" r="1.5"/>',
    'preferences-desktop-default-applications': f'<path {S} d="M4 5h16v11H4zM9 20h6M12 16v4"/><path fill="{A}" d="M10 8l5 2.5-5 2.5z"/>',
    'help-contents': f'<circle {S} cx="12" cy="12" r="9"/><path {S} d="M9.5 9.5a2.5 2.5 0 1 1 3.5 2.3c-.7.3-1 .9-1 1.7v.5"/><circle fill="#333" cx="12" cy="17" r="1.1"/>',
    'help-about': f'<circle {S} cx="12" cy="12" r="9"/><path {S} d="M12 11v6"/><circle fill="{A}" cx="12" cy="7.5" r="1.3"/>',
    'transform-crop': f'<path {S} d="M7 3v14h14M3 7h14v14"/>',
    'media-playback-start': f'<path fill="{A}" d="M7 4l13 8-13 8z"/>',
    'media-playback-pause': f'<path fill="#333" d="M6 4h4v16H6zM14 4h4v16h-4z"/>',
    'media-playback-stop': f'<path fill="#333" d="M5 5h14v14H5z"/>',
    'audio-volume-high': f'<path fill="#333" d="M3 9h4l5-4v14l-5-4H3z"/><path {S} d="M15 9a4 4 0 0 1 0 6M17.5 6.5a7.5 7.5 0 0 1 0 11"/>',
    'view-fullscreen': f'<path {S} d="M4 9V4h5M15 4h5v5M20 15v5h-5M9 20H4v-5"/>',
    'folder-open': f'<path {S} d="M3 6h6l2 2h9v11H3z"/>',
    'image-x-generic': f'<path {S} d="M3 5h18v14H3z"/><path fill="{A}" d="M5 17l5-6 4 4 2-2 3 4z"/><circle fill="#e8a317" cx="16" cy="9" r="1.8"/>',
    'video-x-generic': f'<path {S} d="M3 5h18v14H3zM7 5v14M17 5v14"/><path fill="{A}" d="M10 9l5 3-5 3z"/>',
    'x-office-presentation': f'<path {S} d="M3 4h18M5 4v11h14V4M12 15v5M8 20h8"/><path fill="{A}" d="M8 12V9h2v3zM11 12V7h2v5zM14 12v-2h2v2z"/>',
}

APP = '''<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 64 64">
<rect x="4" y="8" width="56" height="48" rx="6" fill="#1f5fa8"/>
<rect x="9" y="13" width="46" height="38" rx="3" fill="#eaf3fc"/>
<path d="M11 49l14-17 9 10 6-6 13 13z" fill="#3fa34d"/>
<circle cx="44" cy="23" r="5" fill="#f2b632"/>
<path d="M26 22l14 9-14 9z" fill="#d7453a"/>
</svg>
'''

os.makedirs(os.path.join(out, 'icons'), exist_ok=True)
for name, body in ICONS.items():
    with open(os.path.join(out, 'icons', name + '.svg'), 'w') as f:
        f.write(f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 24 24" width="24" height="24">{body}</svg>\n')
os.makedirs(os.path.join(out, 'hicolor', 'scalable'), exist_ok=True)
with open(os.path.join(out, 'hicolor', 'scalable', 'vimora.svg'), 'w') as f:
    f.write(APP)
