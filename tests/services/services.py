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
            "/planetary/apod": self.apod,
            "/api/v1/search": self.wallhaven,
            "/photos/random": self.unsplash,
            "/photos/count": lambda query, headers: (200, {}),
            "/HPImageArchive.aspx": self.bing,
            "/th": lambda query, headers: picture(COLORS["bing"], 1),
            "/v4/api/selection": self.spotlight,
            "/api/v1/artworks/search": self.artic,
            "/public/collection/v1/search": lambda query, headers: (200, {"total": 20, "objectIDs": list(range(1, 21))}),
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
            ("/public/collection/v1/objects/", self.met),
            ("/records/", self.rijks_record),
        ):
            if path.startswith(prefix):
                return answer(path.removeprefix(prefix))
        return NO_SUCH

    @staticmethod
    def drawn(rest):
        service, number = rest.removesuffix(".png").split("/")
        return picture(COLORS[service], int(number) % 10 + 1)

    @staticmethod
    def iiif(rest):
        service, number = rest.split("/")[:2]
        return picture(COLORS[service], int(number) % 10 + 1)

    def apod(self, query, headers):
        if query.get("api_key") == "bad":
            return 403, {"error": {"code": "API_KEY_INVALID"}}

        def item(day):
            is_video = day.day % 5 == 0
            return {
                "date": day.isoformat(),
                "title": f"The sky of {day}",
                "explanation": "Stars.",
                "media_type": "video" if is_video else "image",
                "url": "https://video.example/watch" if is_video else self.image("apod", day.day),
            }

        if "start_date" in query:
            start, end = (datetime.date.fromisoformat(query[key]) for key in ("start_date", "end_date"))
            return 200, [item(start + datetime.timedelta(days=n)) for n in range((end - start).days + 1)]
        return 200, item(datetime.date.fromisoformat(query["date"]) if "date" in query else today())

    def wallhaven(self, query, headers):
        if query.get("apikey") == "bad":
            return 401, {"error": "Unauthorized"}
        return 200, {"data": [{"id": str(n), "path": self.image("wallhaven", n)} for n in range(8)], "meta": {}}

    def unsplash(self, query, headers):
        if not headers.get("Authorization", "").removeprefix("Client-ID "):
            return 401, {"errors": ["OAuth error"]}
        return 200, {
            "urls": {"raw": self.image("unsplash", 3) + "?ixid=1", "full": self.image("unsplash", 3)},
            "links": {"download_location": f"{self.root}/photos/count?id=3"},
            "user": {"name": "Ana"},
            "description": None,
            "alt_description": "a lighthouse",
        }

    def bing(self, query, headers):
        return 200, {"images": [{"url": "/th?id=OHR.Lighthouse_EN-WW", "copyright": "A lighthouse (© Ana)", "title": "Light"}]}

    def spotlight(self, query, headers):
        if not headers.get("User-Agent", "").startswith("Mozilla/"):
            return 200, {"batchrsp": {"errors": [{"msg": "no ad"}], "items": []}}
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
        artworks = [{"id": n, "title": f"Study {n}", "image_id": str(n)} for n in range(ARTWORKS)]
        return 200, {"data": artworks + [{"id": 99, "title": "Lost", "image_id": None}], "config": {"iiif_url": f"{self.root}/iiif/artic"}}

    def met(self, rest):
        number = int(rest)
        is_free = number % 4 != 0
        image = self.image("met" if is_free else "forbidden", number)
        return 200, {"objectID": number, "isPublicDomain": is_free, "primaryImageLarge": image, "title": f"Vase {number}"}

    def rijks(self, query, headers):
        return 200, {"orderedItems": [{"id": f"https://id.museum.example/records/work-{n}"} for n in range(ARTWORKS)]}

    def rijks_record(self, rest):
        kind, number = rest.split("-")
        record = {"id": f"https://id.museum.example/records/{rest}"}
        if kind == "work":
            record |= {"identified_by": [{"type": "Identifier"}, {"content": f"Still life {number}"}]}
            record |= {"shows": [{"id": f"https://id.museum.example/records/visual-{number}"}]}
        elif kind == "visual":
            record |= {"digitally_shown_by": [{"id": f"https://id.museum.example/records/digital-{number}"}]}
        else:
            record |= {"access_point": [{"id": f"{self.root}/iiif/rijks/{number}/full/max/0/default.jpg"}]}
        return 200, record

    def cleveland(self, query, headers):
        def artwork(number, license):
            image = {"url": self.image("cleveland" if license == "CC0" else "forbidden", number), "width": "1600"}
            return {"id": number, "title": f"Harbour {number}", "share_license_status": license, "images": {"web": image}}

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
            }

        return 200, {"items": [item(n) for n in range(ARTWORKS)]}

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
