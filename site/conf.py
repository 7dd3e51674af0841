"""The documentation site: the guide (MyST) and the reference (Doxygen's XML through Breathe)."""
import pathlib
import re

ROOT = pathlib.Path(__file__).resolve().parent.parent
VERSION = re.search(r"project\(pexquo VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text()).group(1)

project = "pexquo"
version = release = VERSION
copyright = "the pexquo developers"
extensions = ["myst_parser", "breathe", "sphinx_copybutton"]
myst_enable_extensions = ["colon_fence", "deflist"]
myst_heading_anchors = 3
source_suffix = {".md": "markdown"}
exclude_patterns = ["_build"]
suppress_warnings = ["myst.header", "myst.xref_missing"]

html_theme = "furo"
html_title = f"pexquo {VERSION}"
html_static_path = ["static"]
html_css_files = ["wide.css"]
html_copy_source = False
html_show_sphinx = False
templates_path = []

breathe_projects = {"pexquo": str(pathlib.Path(__file__).parent / "_build/doxygen/xml")}
breathe_default_project = "pexquo"
breathe_domain_by_extension = {"h": "c", "hpp": "cpp"}
