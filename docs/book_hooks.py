"""What mkdocs calls while it makes the book: the pages of the kinds in their order, colors for scripts,
and a search that works from a disk, where a browser fetches nothing and starts no worker."""
import json
import pathlib
import re
import shutil

from pygments import lexers, token
from pygments.lexer import RegexLexer

KIND = re.compile(r"^\| \[([a-z-]+)\]\(\1\.md\) \|", re.M)
OFFLINE = """if (location.protocol === "file:") {
    var __search = {index: Promise.resolve(%s)};
    const source = new Blob([%s], {type: "text/javascript"});
    const FetchedWorker = Worker;
    Worker = function () { return new FetchedWorker(URL.createObjectURL(source)); };
}
"""


class ScriptLexer(RegexLexer):
    """Scripts of Tessaron."""
    name, aliases, filenames = "Tessaron", ["tsn"], ["*.tsn"]
    tokens = {"root": [
        (r"//.*", token.Comment.Single),
        (r"(?:INCLUDE|PARAMETER|SUBSTITUTE|DEFAULT|WITH)\b", token.Keyword.Namespace),
        (r"(?:FROM|WITH)_[A-Z0-9_]+|EMPTY\b", token.Keyword.Type),
        (r"[A-Z]+_[A-Z]+|CALCULATE", token.Keyword),
        (r"-[a-z][A-Za-z]+", token.Name.Attribute),
        (r"@[\w#@!<>&-]*", token.Name.Variable),
        (r"\"[^\"\n]*\"", token.String),
        (r"\b(?:0?[xX][0-9A-Fa-f]+|\d+)\b", token.Number),
        (r"\w+(?=\()", token.Name.Function),
        (r"\w+|\s+|.", token.Text)]}


def on_config(config):
    lexers.LEXERS["ScriptLexer"] = (__name__, ScriptLexer.name, tuple(ScriptLexer.aliases),
                                    tuple(ScriptLexer.filenames), ())
    lexers._lexer_cache[ScriptLexer.name] = ScriptLexer
    text = (pathlib.Path(config["docs_dir"]) / "diagnostics/index.md").read_text()
    (part,) = (item["Diagnostics"] for item in config["nav"] if "Diagnostics" in item)
    part.extend("diagnostics/%s.md" % kind for kind in KIND.findall(text))
    return config


def on_post_page(output, page, config):
    """The search of a page comes from a script where the page comes from a disk."""
    base = "../" * page.url.count("/")
    return output.replace("<head>", '<head><script src="%ssearch/offline.js"></script>' % base, 1)


def on_post_build(config):
    site = pathlib.Path(config["site_dir"])
    # Maps of the sources, and what the search of other languages needs; a book on a disk has no map.
    for name in (*site.rglob("*.map"), *site.glob("sitemap.xml*")):
        name.unlink()
    shutil.rmtree(site / "assets/javascripts/lunr", ignore_errors=True)
    (worker,) = site.glob("assets/javascripts/workers/search.*.min.js")
    index = (site / "search/search_index.json").read_text()
    (site / "search/offline.js").write_text(OFFLINE % (index, json.dumps(worker.read_text())))
