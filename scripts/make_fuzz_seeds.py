#!/usr/bin/env python3
"""Writes fuzz seeds that sit at the readers' limits: one below, at and one above
each. Usage: make_fuzz_seeds.py OUT_DIR   (makes OUT_DIR/<target>/<seed>)

The numbers are the limits the readers enforce; a seed's name says which limit and
which side of it."""
import os
import struct
import sys

MAX_KEYS = 2000
FIELD_LIMIT = 30000        # a field length at or above it carries no text
SETTINGS_SIZE = 3419
MAX_FORMS = 8
MAX_SLOTS = 100            # per form, the FORM tag's own slot included
MAX_SELECTS = 100
MAX_OPTIONS = 500
MAX_SCRIPTS = 49
MAX_WORD = 4096
MAX_TABLE_PREFIX = 2048
MAX_LABEL = 1023
REQUEST_MAX = 29999
REGISTRY_LINE_MAX = 2047
URL_MAX = 2047
HOST_MAX = 259
LOCAL_PATH_MAX = 259
RECEIVE_CHUNK = 5000


def around(limit):
    return ((limit - 1, 'below'), (limit, 'at'), (limit + 1, 'above'))


# ---- key databases ----
def database(keys):
    out = struct.pack('<Ii', 0x00271EC6, len(keys))
    for fields in keys:
        for text in fields:
            out += struct.pack('<I', len(text)) + text
    return out


def key_file_seeds():
    seeds = {}
    for n, side in around(MAX_KEYS):
        seeds['keys-%s-%d' % (side, n)] = database([(b'k%d' % i, b'', b'', b'') for i in range(n)])
    for n, side in around(FIELD_LIMIT):
        seeds['field-%s-%d' % (side, n)] = database([(b'name', b'x' * n, b'', b'd'), (b'next', b'', b'', b'')])
    return seeds


# ---- pages ----
def form(fields, action='a.cgi'):
    return '<form action="%s" method=post>%s</form>' % (action, ''.join(fields))


def page_seeds():
    seeds = {}
    for n, side in around(MAX_FORMS):
        seeds['forms-%s-%d' % (side, n)] = ''.join(
            form(['<input name=f%d>' % i]) for i in range(n))
    # Slot 0 is the form, so a form holds MAX_SLOTS - 1 fields.
    for n, side in around(MAX_SLOTS - 1):
        seeds['fields-%s-%d' % (side, n)] = form(['L%d <input name=f%d>' % (i, i) for i in range(n)]) + \
            form(['<input name=after>'])
    for n, side in around(MAX_SELECTS):
        per_form = [['<select name=s%d><option>a<option>b</select>' % (f * 60 + i) for i in range(min(60, n - f * 60))]
                    for f in range((n + 59) // 60)]
        seeds['selects-%s-%d' % (side, n)] = ''.join(form(fs) for fs in per_form)
    for n, side in around(MAX_OPTIONS):
        seeds['options-%s-%d' % (side, n)] = form(
            ['<select name=s>%s</select>' % ''.join('<option value=v%d>o%d' % (i, i) for i in range(n)),
             '<input name=after>'])
    for n, side in around(MAX_SCRIPTS):
        seeds['scripts-%s-%d' % (side, n)] = '<script>s</script>' * n + form(['<input name=f>'])
    for n, side in around(MAX_WORD):
        seeds['word-%s-%d' % (side, n)] = form(['<input name=%s>' % ('w' * n), '<input name=after>'])
    for n, side in around(MAX_TABLE_PREFIX):
        # Whole attributes fill the prefix; the last one crosses the limit by `side`.
        body = 'x' * max(0, n - len('<table border=0 width=""'))
        seeds['table-prefix-%s-%d' % (side, n)] = '<table border=0 width="%s">' % body + \
            form(['<input name=f>']) + '</table>'
    for n, side in around(MAX_LABEL):
        seeds['label-%s-%d' % (side, n)] = form(['%s<input name=f>' % ('l' * n), '<input name=g>'])
    return {k: v.encode('latin-1') for k, v in seeds.items()}


def fill_seeds():
    """Key texts (Search Names, Selection, Description of three keys, split by 0x01),
    0x02, then the page. The first key answers every field named F with a long
    Description, so the direct-post request text grows by the number of fields."""
    seeds = {}
    description = 'd' * 997
    for target, side in around(REQUEST_MAX):
        # Each pair is "F=" + the description + "&"; the request line and headers come first.
        fields = target // (len(description) + 3)
        keys = '\x01'.join(['F', '', description, '', '', '', '', '', ''])
        page = form(['<input name=F>' for _ in range(fields)] + ['<input name=x%d>' % i for i in range(target % 7)])
        seeds['request-%s-%d' % (side, target)] = (keys + '\x02' + page).encode('latin-1')
    for n, side in around(MAX_OPTIONS):
        keys = '\x01'.join(['S', 'v%d' % (n - 1), '', '', '', '', '', '', ''])
        page = form(['<select name=S>%s</select>' % ''.join('<option value=v%d>o' % i for i in range(n))])
        seeds['options-%s-%d' % (side, n)] = (keys + '\x02' + page).encode('latin-1')
    return seeds


def registry_seeds():
    seeds = {}
    header = 'DO NOT CHANGE OR EDIT THIS FILE IN ANY WAY!!!\n'
    for n, side in around(REGISTRY_LINE_MAX):
        url = 'www.example.com/' + 'u' * (n - 16)
        seeds['url-line-%s-%d' % (side, n)] = header + url + '\nC:\\App\\DataHtml\\a.htm\n\nwww.b.com/\nC:\\App\\DataHtml\\b.htm\n'
        f = 'C:\\App\\DataHtml\\' + 'f' * (n - 16)
        seeds['file-line-%s-%d' % (side, n)] = header + 'www.example.com/\n' + f + '\n'
    return {k: v.encode('latin-1') for k, v in seeds.items()}


def settings_seeds():
    seeds = {}
    for n, side in around(SETTINGS_SIZE):
        seeds['settings-%s-%d' % (side, n)] = bytes((i * 7) & 0xFF for i in range(n))
    seeds['settings-empty'] = b''
    return seeds


def url_seeds():
    """First byte: the folder's length; then the folder and the address."""
    seeds = {}
    folder = 'C:\\App\\DataHtml\\'

    def one(url, fold=folder):
        return bytes([len(fold)]) + (fold + url).encode('latin-1')
    for n, side in around(URL_MAX):
        seeds['url-%s-%d' % (side, n)] = one('http://www.example.com/' + 'p' * (n - 23))
    for n, side in around(HOST_MAX):
        seeds['host-%s-%d' % (side, n)] = one('http://' + 'h' * n + '/form.asp')
    for n, side in around(LOCAL_PATH_MAX):
        seeds['local-path-%s-%d' % (side, n)] = one('http://www.example.com/' + 'n' * (n - len(folder) - 4))
    for n, side in around(RECEIVE_CHUNK):
        seeds['get-request-%s-%d' % (side, n)] = one('http://h/' + 'g' * (n - 40))
    # No folder: the whole text is a copied address, escapes and all.
    for n, side in around(URL_MAX):
        seeds['pasted-%s-%d' % (side, n)] = one('file:///C:/My%20Pages/' + 'f' * (n - 22), '')
    return seeds


TARGETS = {
    'fuzz_key_file': key_file_seeds,
    'fuzz_form_page': page_seeds,
    'fuzz_fill_page': fill_seeds,
    'fuzz_registry': registry_seeds,
    'fuzz_settings': settings_seeds,
    'fuzz_url': url_seeds,
}


def main():
    out = sys.argv[1]
    only = sys.argv[2:] or list(TARGETS)
    for target in only:
        if target not in TARGETS:
            continue
        folder = os.path.join(out, target)
        os.makedirs(folder, exist_ok=True)
        for name, data in TARGETS[target]().items():
            with open(os.path.join(folder, name), 'wb') as f:
                f.write(data)
    return 0


if __name__ == '__main__':
    sys.exit(main())
