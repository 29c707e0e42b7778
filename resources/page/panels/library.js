// What was filed so far, to look at and to listen to.

import {part} from '../elements.js';
import {say} from '../words.js';
import {ItemList} from './list.js';

class Song {
  constructor(id, player) {
    this.id = id;
    this.element = document.createElement('li');
    this.element.className = 'song';
    this.cover = part('div', 'cover', this.element);
    const words = part('div', 'words', this.element);
    this.title = part('span', 'title', words);
    this.artist = part('span', 'artist', words);
    this.album = part('span', 'album', words);
    this.button = part('button', 'play', this.element);
    this.button.type = 'button';
    this.button.addEventListener('click', () => player.toggle(this));
  }

  show({title, artist, album, track, year, path, hasCover}) {
    this.name = title;
    this.title.textContent = title;
    this.artist.textContent = artist ?? '';
    this.album.textContent = [album, track && say('library.track', {track}), year].filter(Boolean).join(' · ');
    this.element.title = path;
    this.showCover(hasCover);
    this.showPlaying(this.isPlaying);
  }

  showCover(hasCover) {
    if (hasCover === Boolean(this.image)) return;
    this.image?.remove();
    this.image = hasCover ? part('img', '', this.cover) : null;
    if (this.image) Object.assign(this.image, {alt: '', loading: 'lazy', src: `/library/cover/${this.id}`});
  }

  showPlaying(isPlaying = false) {
    this.isPlaying = isPlaying;
    this.button.classList.toggle('playing', isPlaying);
    this.button.setAttribute('aria-label', say(isPlaying ? 'library.pause' : 'library.play', {title: this.name}));
  }
}

/** Plays one song at a time. */
class Player {
  constructor(audio, tell) {
    this.audio = audio;
    audio.setAttribute('aria-label', say('library.player'));
    for (const type of ['play', 'pause', 'ended']) audio.addEventListener(type, () => this.song?.showPlaying(!audio.paused));
    audio.addEventListener('error', () => this.song && tell(say('library.cannotPlay', {title: this.song.name})));
  }

  toggle(song) {
    if (this.song === song && !this.audio.paused) return this.audio.pause();
    if (this.song !== song) {
      this.song?.showPlaying(false);
      this.song = song;
      this.audio.src = `/library/audio/${song.id}`;
      this.audio.hidden = false;
    }
    this.audio.play().catch(() => {}); // the error event says why
  }
}

export class Library {
  constructor(section, {send}) {
    section.querySelector('h2').textContent = say('library');
    this.remark = section.querySelector('.remark');
    const player = new Player(section.querySelector('audio'), text => this.tell(text));
    this.list = new ItemList(section.querySelector('ol'), id => new Song(id, player));
    this.more = section.querySelector('.more');
    this.more.textContent = say('library.more');
    const ask = () => send({type: 'more-library', before: this.list.oldest});
    this.more.addEventListener('click', ask);
    new IntersectionObserver(seen => seen.some(({isIntersecting}) => isIntersecting) && ask()).observe(this.more);
    this.tell('');
  }

  take({items = [], whole, more}) {
    this.list.take(items, whole);
    if (more !== undefined) this.more.hidden = !more;
    this.tell('');
  }

  tell(text) {
    this.remark.textContent = text || (this.list.size === 0 ? say('library.none') : '');
  }
}
