#!/usr/bin/env python3
"""A sample web site on 127.0.0.1:80 for a first look at "Scan HTML".

Usage: sample_site.py FORM_PAGE

Every GET is answered with FORM_PAGE; a POST is answered with a page that lists
the fields it received, so a person sees what the filled form sent.
"""
import html
import http.server
import sys
import urllib.parse


class Site(http.server.BaseHTTPRequestHandler):
    form = b""

    def reply(self, body):
        self.send_response(200)
        self.send_header("Content-Type", "text/html")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def do_GET(self):
        self.reply(Site.form)

    def do_POST(self):
        length = int(self.headers.get("Content-Length", "0") or 0)
        data = self.rfile.read(length).decode("latin-1")
        # The program's own client sends its pairs in the query, browsers in the body.
        pairs = urllib.parse.parse_qsl(data or urllib.parse.urlsplit(self.path).query, keep_blank_values=True)
        rows = "".join(f"<tr><td>{html.escape(k)}</td><td>{html.escape(v)}</td></tr>" for k, v in pairs)
        self.reply(f"<html><body><h2>Order received</h2><table>{rows}</table></body></html>".encode("latin-1"))

    def log_message(self, *args):
        pass


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    with open(sys.argv[1], "rb") as f:
        Site.form = f.read()
    try:
        server = http.server.HTTPServer(("127.0.0.1", 80), Site)
    except OSError as e:
        sys.exit(f"sample_site: cannot serve on 127.0.0.1:80 ({e})")
    server.serve_forever()
