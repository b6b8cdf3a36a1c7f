"""What twelve picture services answer: in their shapes, in our words."""

import datetime
import json
import urllib.parse

from pictures import earth, picture

# The ground of each service's pictures. What must never be shown is magenta.
COLORS = {
    "apod": "1b2a5c",
    "wallhaven": "2e7d4f",
    "unsplash": "b5651d",
    "bing": "1c7c7d",
    "spotlight": "6a4c93",
    "artic": "8c2f39",
    "met": "7a5c2e",
    "rijks": "c46a1b",
    "cleveland": "3b6e8f",
    "smk": "55722f",
    "smithsonian": "4a4a68",
    "forbidden": "ff00ff",
}
ARTWORKS = 12
NO_SUCH = (404, {"error": "no such page"})


def today():
    return datetime.datetime.now(datetime.timezone.utc).date()


class Services:
    """Answers to requests: (status, what JSON holds), or bytes of a picture."""

    def __init__(self, root):
        self.root = root

    def image(self, service, number):
        return f"{self.root}/images/{service}/{number}.png"

    def answer(self, path, query, headers):
        routes = {
            "/wp-json/wp/v2/apod-basic": self.apod,
            "/planetary/apod": self.former_apod,
            "/api/v1/search": self.wallhaven,
            "/photos/random": self.unsplash,
            "/photos/count": lambda query, headers: (200, {}),
            "/HPImageArchive.aspx": self.bing,
            "/th": lambda query, headers: picture(COLORS["bing"], 1),
            "/v4/api/selection": self.spotlight,
            "/api/v1/artworks/search": self.artic,
            "/public/collection/v1.1/search": self.met_search,
            "/search/collection": self.rijks,
            "/api/artworks/": self.cleveland,
            "/api/v1/art/search/": self.smk,
            "/openaccess/api/v1.0/search": self.smithsonian,
        }
        if path in routes:
            return routes[path](query, headers)
        for prefix, answer in (
            ("/images/", self.drawn),
            ("/iiif/", self.iiif),
            ("/archive/", lambda rest: earth(int(rest.split("_")[-1].split(".")[0]) % 20)),
            ("/api/natural", self.epic),
            ("/api/enhanced", self.epic),
            ("/wp-json/wp/v2/apod-basic/", self.apod_day),
            ("/public/collection/v1/objects/", self.met),
            ("/records/", self.rijks_record),
        ):
            if path.startswith(prefix):
                return answer(path.removeprefix(prefix))
        return NO_SUCH

    @staticmethod
    def drawn(rest):
        if rest == "gone":
            return NO_SUCH
        if rest == "nasa-logo.png":
            return picture(COLORS["forbidden"], 1)
        service, number = rest.removesuffix(".png").split("/")
        return picture(COLORS[service], int(number) % 10 + 1)

    @staticmethod
    def iiif(rest):
        service, number = rest.split("/")[:2]
        return picture(COLORS[service], int(number) % 10 + 1)

    def apod_item(self, day):
        media = "video" if day.day % 5 == 0 else "iframe" if day.day % 7 == 0 else "image"
        return {
            "date": day.isoformat(),
            "title": f"The sky of {day} &amp; its stars",
            "permalink": f"{self.root}/apod/{day:%y%m%d}/",
            "media_type": media,
            "explanation": "<p>Stars.</p>",
            "credit": "<a href='https://ana.example'>Ana</a> &#038; Rui",
            "copyright": "Ana",
            "alt": "",
            "url": f"{self.root}/apod/{day:%y%m%d}/",
            "hdurl": self.image("apod" if media == "image" else "forbidden", day.day),
        }

    def apod(self, query, headers):
        count = min(int(query.get("per_page", 10)), 25)
        start, end = query.get("date_from"), query.get("date_to")
        last = min(datetime.datetime.strptime(end, "%y%m%d").date(), today()) if end else today()
        days = [last - datetime.timedelta(days=n) for n in range(count)]
        return 200, [self.apod_item(day) for day in days if not start or f"{day:%y%m%d}" >= start]

    def apod_day(self, rest):
        day = datetime.datetime.strptime(rest, "%y%m%d").date()
        if day > today() or day.day == 13:
            return 404, {"code": "apod_not_found", "message": "No APOD was found.", "data": {"status": 404}}
        return 200, self.apod_item(day)

    def former_apod(self, query, headers):
        """What it says to everything since it was emptied."""
        logo = f"{self.root}/images/nasa-logo.png"
        return 200, {"date": "2026-09-29", "title": "APOD", "media_type": "image", "url": logo, "hdurl": logo}

    def wallhaven(self, query, headers):
        if query.get("apikey") == "bad":
            return 401, {"error": "Unauthorized"}
        if "Quillmar/" not in headers.get("User-Agent", ""):
            return 403, {"error": "who asks?"}
        pictures = [
            {"id": f"x{n}", "path": self.image("wallhaven", n), "short_url": f"https://wall.example/x{n}", "dimension_x": 1600}
            for n in range(8)
        ]
        return 200, {"data": pictures, "meta": {"current_page": 1, "last_page": 9, "query": None}}

    def unsplash(self, query, headers):
        if not headers.get("Authorization", "").removeprefix("Client-ID "):
            return 401, {"errors": ["OAuth error"]}
        return 200, {
            "urls": {"raw": self.image("unsplash", 3) + "?ixid=1", "full": self.image("unsplash", 3)},
            "links": {"download_location": f"{self.root}/photos/count?id=3", "html": "https://photos.example/3"},
            "user": {"name": "Ana", "links": {}},
            "description": None,
            "alt_description": "a lighthouse",
        }

    def bing(self, query, headers):
        name = "/th?id=OHR.Lighthouse_EN-WW"
        image = {"url": name + "_1920x1080.jpg", "urlbase": name, "copyright": "A lighthouse (© Ana)", "title": "Light", "wp": True}
        return 200, {"images": [image], "tooltips": {}}

    def spotlight(self, query, headers):
        if not headers.get("User-Agent", "").startswith("Mozilla/"):
            return 200, {"batchrsp": {"ver": "1.0", "errors": [{"code": 2000, "msg": "no ad"}]}}
        number = datetime.datetime.now().microsecond % 9
        ad = {"ad": {"landscapeImage": {"asset": self.image("spotlight", number)}, "title": "A bay", "copyright": "© Ana"}}
        return 200, {"batchrsp": {"items": [{"item": json.dumps(ad)}]}}

    def epic(self, rest):
        days = [today() - datetime.timedelta(days=n) for n in range(1, 6)]

        def observations(day):
            return [
                {"image": f"epic_1b_{day:%Y%m%d}_{number}", "date": f"{day} {number:02}:13:03", "caption": "Earth"}
                for number in range(0, 18, 3)
            ]

        if rest == "":
            return 200, observations(days[0])
        if rest == "/available":
            return 200, [day.isoformat() for day in reversed(days)]
        return 200, observations(datetime.date.fromisoformat(rest.removeprefix("/date/")))

    def artic(self, query, headers):
        if "Quillmar/" not in headers.get("AIC-User-Agent", ""):
            return 403, {"error": "who asks?"}
        artworks = [{"id": n, "title": f"Study {n}", "image_id": str(n), "artist_title": "Ana"} for n in range(ARTWORKS)]
        config = {"iiif_url": f"{self.root}/iiif/artic", "website_url": "https://museum.example"}
        return 200, {"data": artworks + [{"id": 99, "title": "Lost", "image_id": None}], "config": config}

    def met_search(self, query, headers):
        numbers = list(range(1, 21))
        return 200, {"total": 20, "objectIDs": numbers[int(query["offset"]) :][: int(query["limit"])]}

    def met(self, rest):
        number = int(rest)
        if number % 7 == 0:
            return 404, {"message": "ObjectID not found"}
        if number % 5 == 0:
            return 200, {"message": "not a valid object"}
        is_free = number % 4 != 0
        image = "" if number % 6 == 0 else self.image("met" if is_free else "forbidden", number)
        answer = {"objectID": number, "isPublicDomain": is_free, "primaryImage": image, "primaryImageSmall": image}
        return 200, answer | {"title": f"Vase {number}", "artistDisplayName": "", "objectURL": f"https://museum.example/{number}"}

    def rijks(self, query, headers):
        records = [f"https://id.museum.example/records/work-{n}" for n in range(ARTWORKS)]
        return 200, {"orderedItems": [{"id": record} if n % 2 else record for n, record in enumerate(records)], "next": {}}

    def rijks_record(self, rest):
        kind, number = rest.split("-")
        if kind == "visual" and int(number) % 3 == 0:
            return NO_SUCH
        record = {"id": f"https://id.museum.example/records/{rest}"}
        if kind == "work":
            record |= {"identified_by": [{"type": "Identifier"}, {"content": f"Still life {number}"}, "SK-A-1"]}
            record |= {"shows": [{"id": f"https://id.museum.example/records/visual-{number}"}]}
        elif kind == "visual":
            record |= {"digitally_shown_by": [f"https://id.museum.example/records/digital-{number}"]}
        else:
            record |= {"access_point": [{"id": f"{self.root}/iiif/rijks/{number}/full/max/0/default.jpg"}]}
        return 200, record

    def cleveland(self, query, headers):
        def artwork(number, license):
            image = {"url": self.image("cleveland" if license == "CC0" else "forbidden", number), "width": "1600"}
            gone = {"url": f"{self.root}/images/gone", "width": "9000"}
            images = {"web": image, "print": gone if number == 1 else None, "full": gone}
            work = {"id": number, "title": f"Harbour {number}", "share_license_status": license, "images": images}
            return work | {"url": f"https://museum.example/{number}", "creators": [{"description": "Ana"}]}

        return 200, {"data": [artwork(n, "CC0" if n % 3 else "Copyrighted") for n in range(ARTWORKS)]}

    def smk(self, query, headers):
        def item(number):
            is_free = number % 3 != 0
            name = "smk" if is_free else "forbidden"
            return {
                "id": f"{number}_object",
                "object_number": f"KMS{number}",
                "titles": [{"title": f"Winter {number}"}],
                "public_domain": is_free,
                "image_iiif_id": f"{self.root}/iiif/{name}/{number}",
                "image_thumbnail": f"{self.root}/iiif/{name}/{number}/full/!1024,/0/default.jpg",
            }

        is_narrowed = "[public_domain:true]" in query.get("filters", "")
        return 200, {"items": [item(n) for n in range(ARTWORKS) if not is_narrowed or n % 3], "found": ARTWORKS}

    def smithsonian(self, query, headers):
        if not query.get("api_key"):
            return 403, {"error": {"code": "API_KEY_MISSING"}}

        def row(number):
            is_free = number % 3 != 0
            medium = {
                "content": self.image("smithsonian" if is_free else "forbidden", number),
                "type": "Images",
                "usage": {"access": "CC0" if is_free else "Usage conditions apply"},
            }
            return {
                "id": f"edanmdm-{number}",
                "title": f"Map {number}",
                "content": {"descriptiveNonRepeating": {"online_media": {"media": [medium]}}},
            }

        return 200, {"response": {"rows": [row(n) for n in range(ARTWORKS)]}}


def query_of(text):
    return dict(urllib.parse.parse_qsl(text, keep_blank_values=True))
