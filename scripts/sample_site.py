#!/usr/bin/env python3
"""A sample web site on 127.0.0.1:80 for a first look at "Scan HTML".

Usage: sample_site.py FORM_PAGE

Every GET is answered with FORM_PAGE; a POST is answered with a page that lists
the fields it received, so a person sees what the filled form sent. When the test
authority's certificate for `localhost` is there (scripts/test-ca.sh), the same
site is served over HTTPS too, at https://localhost/.
"""
import html
import http.server
import os
import socket
import ssl
import sys
import threading
import urllib.parse

TLS_DIR = os.environ.get("QB_TEST_TLS_DIR", "/etc/quellbarrow-test-tls")


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


class DualStackServer(http.server.HTTPServer):
    """Every address of the port, IPv6 and IPv4: `localhost` may be ::1 first."""
    address_family = socket.AF_INET6

    def server_bind(self):
        self.socket.setsockopt(socket.IPPROTO_IPV6, socket.IPV6_V6ONLY, 0)
        super().server_bind()


def https_server(handler):
    """`handler` on port 443 with the test certificate for `localhost`; raises OSError
    when the port or the certificate is not to be had."""
    server = DualStackServer(("::", 443), handler)
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    try:
        context.load_cert_chain(os.path.join(TLS_DIR, "localhost.crt"), os.path.join(TLS_DIR, "localhost.key"))
    except OSError:
        server.server_close()
        raise
    server.socket = context.wrap_socket(server.socket, server_side=True)
    return server


def serve_https():
    try:
        server = https_server(Site)
    except OSError as e:
        print(f"sample_site: no HTTPS on port 443 ({e})", file=sys.stderr)
        return
    threading.Thread(target=server.serve_forever, daemon=True).start()


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    with open(sys.argv[1], "rb") as f:
        Site.form = f.read()
    try:
        server = http.server.HTTPServer(("127.0.0.1", 80), Site)
    except OSError as e:
        sys.exit(f"sample_site: cannot serve on 127.0.0.1:80 ({e})")
    serve_https()
    server.serve_forever()
